#pragma once

// The item's icon: the program's disk, as full as the volume is, drawn anew for each size since at 16 pixels
// every one of them counts. Its tones stand out from dark panels as well as from light ones.

#include <QColor>
#include <QImage>
#include <QList>

#include <array>

namespace Quillbrook::TrayPicture {

/// The sizes that panels ask for, in pixels.
inline constexpr std::array sizes{ 16, 22, 24, 32, 48 };

/// What a picture can show; two volumes with the same content have the same picture.
struct Content
{
    /// How full, in steps from 0 to `steps`.
    int step = 0;
    /// It warns.
    bool isDanger = false;

    bool operator==(const Content &) const = default;
};

/// Fine enough for 48 pixels, and coarse enough that the icon does not change with every file.
inline constexpr int steps = 48;

/// The share of the volume that is used, 0 to 1; what lies outside counts as the nearest of these.
[[nodiscard]] Content contentOf(double usedShare, bool isDanger);

/// Of what is used.
[[nodiscard]] QColor tone(bool isDanger);

/// A square of `size` pixels, not premultiplied.
[[nodiscard]] QImage draw(const Content &content, int size);
/// In all sizes.
[[nodiscard]] QList<QImage> drawAll(const Content &content);

} // namespace Quillbrook::TrayPicture
