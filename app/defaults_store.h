#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>

namespace talvex::app {

// One stored user default: a flag, a whole number or a text.
using DefaultValue = std::variant<bool, long long, std::string>;
using DefaultValues = std::map<std::string, DefaultValue, std::less<>>;

// Where the application's own defaults domain is kept (QSettings in the desktop app, a map in
// the tests).
class PersistentDomain {
  public:
    virtual ~PersistentDomain() = default;

    [[nodiscard]] virtual std::optional<DefaultValue> value(const std::string& key) const = 0;
    virtual void setValue(const std::string& key, const DefaultValue& value) = 0;
    // Removes every key of the domain.
    virtual void removeAll() = 0;
    // Writes what was set to disk now; false when that failed.
    virtual bool flush() = 0;
};

// The user defaults: the persistent domain in front of the registration defaults, read the way
// a defaults store reads: a missing flag is false, a missing number 0, a missing text absent.
class DefaultsStore {
  public:
    explicit DefaultsStore(PersistentDomain& domain) : m_domain(domain) {}

    // The initial values that stand wherever the persistent domain has none.
    void registerDefaults(const DefaultValues& defaults);

    [[nodiscard]] bool contains(const std::string& key) const;
    [[nodiscard]] bool boolForKey(const std::string& key) const;
    [[nodiscard]] long long integerForKey(const std::string& key) const;
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;

    void setBool(const std::string& key, bool value);
    void setInteger(const std::string& key, long long value);
    void setString(const std::string& key, const std::string& value);

    // Forgets every persistent key; the registration defaults stay.
    void removePersistentDomain();
    bool synchronize();

  private:
    [[nodiscard]] std::optional<DefaultValue> lookUp(const std::string& key) const;

    PersistentDomain& m_domain;
    DefaultValues m_registered;
};

}  // namespace talvex::app
