#include "app/defaults_store.h"

#include <cctype>
#include <charconv>

namespace talvex::app {

namespace {

bool textIsTrue(const std::string& text) {
    // A text counts as a flag the way a defaults store reads one: "yes", "true" or a number
    // other than zero.
    std::string lower;
    for (const char c : text) {
        lower.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
    if (lower == "yes" || lower == "true") {
        return true;
    }
    long long number = 0;
    const auto [end, error] = std::from_chars(lower.data(), lower.data() + lower.size(), number);
    return error == std::errc() && end != lower.data() && number != 0;
}

long long leadingInteger(const std::string& text) {
    std::size_t start = 0;
    while (start < text.size() && std::isspace(static_cast<unsigned char>(text[start])) != 0) {
        ++start;
    }
    long long number = 0;
    const auto result = std::from_chars(text.data() + start, text.data() + text.size(), number);
    return result.ec == std::errc() ? number : 0;
}

}  // namespace

void DefaultsStore::registerDefaults(const DefaultValues& defaults) {
    for (const auto& [key, value] : defaults) {
        m_registered.insert_or_assign(key, value);
    }
}

std::optional<DefaultValue> DefaultsStore::lookUp(const std::string& key) const {
    if (auto stored = m_domain.value(key)) {
        return stored;
    }
    if (const auto found = m_registered.find(key); found != m_registered.end()) {
        return found->second;
    }
    return std::nullopt;
}

bool DefaultsStore::contains(const std::string& key) const { return lookUp(key).has_value(); }

bool DefaultsStore::boolForKey(const std::string& key) const {
    const auto value = lookUp(key);
    if (!value) {
        return false;
    }
    if (const auto* flag = std::get_if<bool>(&*value)) {
        return *flag;
    }
    if (const auto* number = std::get_if<long long>(&*value)) {
        return *number != 0;
    }
    return textIsTrue(std::get<std::string>(*value));
}

long long DefaultsStore::integerForKey(const std::string& key) const {
    const auto value = lookUp(key);
    if (!value) {
        return 0;
    }
    if (const auto* flag = std::get_if<bool>(&*value)) {
        return *flag ? 1 : 0;
    }
    if (const auto* number = std::get_if<long long>(&*value)) {
        return *number;
    }
    return leadingInteger(std::get<std::string>(*value));
}

std::optional<std::string> DefaultsStore::stringForKey(const std::string& key) const {
    const auto value = lookUp(key);
    if (!value) {
        return std::nullopt;
    }
    if (const auto* flag = std::get_if<bool>(&*value)) {
        return *flag ? "1" : "0";
    }
    if (const auto* number = std::get_if<long long>(&*value)) {
        return std::to_string(*number);
    }
    return std::get<std::string>(*value);
}

void DefaultsStore::setBool(const std::string& key, bool value) { m_domain.setValue(key, value); }

void DefaultsStore::setInteger(const std::string& key, long long value) {
    m_domain.setValue(key, value);
}

void DefaultsStore::setString(const std::string& key, const std::string& value) {
    m_domain.setValue(key, value);
}

void DefaultsStore::removePersistentDomain() { m_domain.removeAll(); }

bool DefaultsStore::synchronize() { return m_domain.flush(); }

}  // namespace talvex::app
