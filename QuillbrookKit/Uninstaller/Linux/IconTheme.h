#pragma once

// What an icon theme says of itself in its index: where it keeps the icons of applications, and which themes
// stand behind it. Its content is not trusted.

#include <QByteArrayView>

#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

struct IconTheme
{
    /// Below the theme's own folder, in raw bytes; what suits a list best comes first.
    std::vector<std::string> folders{};
    /// The themes to look in where this one has nothing, by the names of their folders.
    std::vector<std::string> parents{};

    bool operator==(const IconTheme &) const = default;

    /// What is longer is nobody's index.
    static constexpr qsizetype maximumBytes = qsizetype{ 1024 } * 1024;

    [[nodiscard]] static std::optional<IconTheme> parse(QByteArrayView index);
};

/// How well icons of a size suit a list, in which they are half as large as 64 pixels; 0 for no size at all.
[[nodiscard]] int meritOfIcons(int size, bool isScalable);

} // namespace Quillbrook
