#pragma once

#include <QSettings>
#include <optional>
#include <string>

#include "app/defaults_store.h"

namespace talvex::gui {

// The defaults domain in QSettings ("Corvessa", "Talvex"): ~/.config/Corvessa/Talvex.conf on
// Linux. The INI file keeps no types, so each kind of value has its own group ("flags",
// "numbers", "texts") and a value reads back as the kind it was written: a text "true" stays a
// text, a number stays a number.
class SettingsDomain final : public app::PersistentDomain {
  public:
    SettingsDomain();

    [[nodiscard]] std::optional<app::DefaultValue> value(const std::string& key) const override;
    void setValue(const std::string& key, const app::DefaultValue& value) override;
    void removeAll() override;
    bool flush() override;

    [[nodiscard]] QString fileName() const { return m_settings.fileName(); }

  private:
    // QSettings reads are const in meaning but not in signature.
    mutable QSettings m_settings;
};

}  // namespace talvex::gui
