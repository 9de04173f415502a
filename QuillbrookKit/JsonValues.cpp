#include "JsonValues.h"

#include <cmath>
#include <limits>

namespace Quillbrook::JsonValues {

const Json *member(const Json &object, const char *key)
{
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::optional<std::string> text(const Json &object, const char *key)
{
    const auto *value = member(object, key);
    return value != nullptr && value->is_string() ? std::optional(value->get<std::string>()) : std::nullopt;
}

std::optional<qint64> wholeNumber(const Json &object, const char *key)
{
    const auto *value = member(object, key);
    if (value == nullptr || !value->is_number())
        return std::nullopt;
    if (value->is_number_unsigned() && value->get<quint64>() > quint64{ std::numeric_limits<qint64>::max() })
        return std::nullopt;
    if (!value->is_number_float())
        return value->get<qint64>();
    constexpr double limit = 9007199254740992.0;
    const auto number = value->get<double>();
    if (std::trunc(number) != number || std::abs(number) > limit)
        return std::nullopt;
    return static_cast<qint64>(number);
}

std::optional<double> number(const Json &object, const char *key)
{
    const auto *value = member(object, key);
    return value != nullptr && value->is_number() ? std::optional(value->get<double>()) : std::nullopt;
}

std::optional<bool> boolean(const Json &object, const char *key)
{
    const auto *value = member(object, key);
    return value != nullptr && value->is_boolean() ? std::optional(value->get<bool>()) : std::nullopt;
}

} // namespace Quillbrook::JsonValues
