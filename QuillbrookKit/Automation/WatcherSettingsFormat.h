#pragma once

// The watcher's settings as one JSON object by the keys of the same names.

#include "Automation/Watcher.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace Quillbrook::WatcherSettingsFormat {

/// Compact. REQUIRES: the times are numbers, not infinite ones or none.
[[nodiscard]] QByteArray toJson(const Watcher::Settings &settings);
/// Absent when `json` is anything else than an object that holds every key with a value of its type. Keys
/// that are not known are passed over.
[[nodiscard]] std::optional<Watcher::Settings> fromJson(QByteArrayView json);

} // namespace Quillbrook::WatcherSettingsFormat
