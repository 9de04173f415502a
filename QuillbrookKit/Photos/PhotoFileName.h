#pragma once

// What a file is by its name alone: a picture, a video, what belongs to one, or none of them. No file is ever
// opened to find out. Pure functions on raw bytes.

#include "Photos/PhotoLibrary.h"

#include <string_view>

namespace Quillbrook {

/// A name taken apart. `stem` is what the files of one shot have in common, and points into the name.
struct PhotoFileName
{
    std::string_view stem{};
    /// Absent for a file that only belongs to a shot, as what was changed about it does.
    std::optional<PhotoKind> kind{};
    /// It stands for a file whose bytes lie elsewhere.
    bool isPlaceholder = false;

    bool operator==(const PhotoFileName &) const = default;

    /// Absent for what is no part of a shot, and for hidden files.
    [[nodiscard]] static std::optional<PhotoFileName> of(std::string_view name);

    /// Whether a folder of that name holds no one's pictures: hidden ones, which photo programs keep their
    /// own trash in, and previews.
    [[nodiscard]] static bool isLeftOut(std::string_view folderName);
};

} // namespace Quillbrook
