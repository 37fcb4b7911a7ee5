#include "gui/settings_domain.h"

#include <array>
#include <variant>

namespace talvex::gui {

namespace {

constexpr const char* kFlags = "flags/";
constexpr const char* kNumbers = "numbers/";
constexpr const char* kTexts = "texts/";

QString keyIn(const char* group, const std::string& key) {
    return QString::fromLatin1(group) + QString::fromStdString(key);
}

}  // namespace

SettingsDomain::SettingsDomain()
    : m_settings(QStringLiteral("Corvessa"), QStringLiteral("Talvex")) {
    // Only the application's own file: values from the organisation's or the system's files
    // could not be removed by a factory reset.
    m_settings.setFallbacksEnabled(false);
}

std::optional<app::DefaultValue> SettingsDomain::value(const std::string& key) const {
    if (const QVariant flag = m_settings.value(keyIn(kFlags, key)); flag.isValid()) {
        return app::DefaultValue(flag.toBool());
    }
    if (const QVariant number = m_settings.value(keyIn(kNumbers, key)); number.isValid()) {
        bool ok = false;
        const qlonglong read = number.toLongLong(&ok);
        if (ok) {
            return app::DefaultValue(static_cast<long long>(read));
        }
    }
    if (const QVariant text = m_settings.value(keyIn(kTexts, key)); text.isValid()) {
        return app::DefaultValue(text.toString().toStdString());
    }
    return std::nullopt;
}

void SettingsDomain::setValue(const std::string& key, const app::DefaultValue& value) {
    // A key lives in one group only, whatever kind it had before.
    for (const char* group : {kFlags, kNumbers, kTexts}) {
        m_settings.remove(keyIn(group, key));
    }
    if (const auto* flag = std::get_if<bool>(&value)) {
        m_settings.setValue(keyIn(kFlags, key), *flag);
    } else if (const auto* number = std::get_if<long long>(&value)) {
        m_settings.setValue(keyIn(kNumbers, key), static_cast<qlonglong>(*number));
    } else {
        m_settings.setValue(keyIn(kTexts, key),
                            QString::fromStdString(std::get<std::string>(value)));
    }
}

void SettingsDomain::removeAll() { m_settings.clear(); }

bool SettingsDomain::flush() {
    m_settings.sync();
    return m_settings.status() == QSettings::NoError;
}

}  // namespace talvex::gui
