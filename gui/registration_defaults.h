#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "app/defaults_store.h"

namespace talvex::gui {

// The registration defaults shipped in the resources.
inline constexpr const char* kRegistrationDefaultsResource = ":/KVTXRegistrationDefaults.json";

// The values of a JSON object of flags, whole numbers and texts; nothing when the text is no
// JSON object. Members of other kinds are skipped.
[[nodiscard]] std::optional<app::DefaultValues> parseRegistrationDefaults(const QByteArray& json);

// The registration defaults read from the file (a resource path by default); nothing when it
// cannot be read.
[[nodiscard]] std::optional<app::DefaultValues> readRegistrationDefaults(
    const QString& path = QString::fromLatin1(kRegistrationDefaultsResource));

}  // namespace talvex::gui
