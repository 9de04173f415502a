#pragma once

// Values out of parsed JSON by their exact types: what is missing or of another type is absent, and nothing
// throws.

#include <QtGlobal>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace Quillbrook::JsonValues {

using Json = nlohmann::ordered_json;

/// Null when the object does not have it. Lives as long as the object.
[[nodiscard]] const Json *member(const Json &object, const char *key);
[[nodiscard]] std::optional<std::string> text(const Json &object, const char *key);
/// A whole number, however it is written: 5, 5.0 and 5e0 are the same, as far as a double tells them from
/// their neighbours.
[[nodiscard]] std::optional<qint64> wholeNumber(const Json &object, const char *key);
[[nodiscard]] std::optional<double> number(const Json &object, const char *key);
[[nodiscard]] std::optional<bool> boolean(const Json &object, const char *key);

} // namespace Quillbrook::JsonValues
