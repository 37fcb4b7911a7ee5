#include "gui/registration_defaults.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

namespace talvex::gui {

std::optional<app::DefaultValues> parseRegistrationDefaults(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    app::DefaultValues values;
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const std::string key = it.key().toStdString();
        const QJsonValue value = it.value();
        if (value.isBool()) {
            values.insert_or_assign(key, value.toBool());
        } else if (value.isDouble()) {
            // JSON has only one number type; the defaults hold whole numbers.
            const double number = value.toDouble();
            constexpr double kLimit = 9.0e18;  // inside the range of long long
            if (std::isfinite(number) && std::trunc(number) == number &&
                std::abs(number) < kLimit) {
                values.insert_or_assign(key, static_cast<long long>(number));
            }
        } else if (value.isString()) {
            values.insert_or_assign(key, value.toString().toStdString());
        }
    }
    return values;
}

std::optional<app::DefaultValues> readRegistrationDefaults(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return parseRegistrationDefaults(file.readAll());
}

}  // namespace talvex::gui
