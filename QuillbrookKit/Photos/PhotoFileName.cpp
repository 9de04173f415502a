#include "Photos/PhotoFileName.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace Quillbrook {

namespace {

using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 48> images{ "3fr", "arw", "avif", "bmp", "cr2", "cr3", "crw", "dcr",
    "dng", "erf", "gif", "heic", "heif", "hif", "iiq", "j2k", "jfif", "jp2", "jpe", "jpeg", "jpg", "jxl",
    "jxr", "k25", "kdc", "mef", "mos", "mpo", "mrw", "nef", "nrw", "orf", "pef", "png", "raf", "raw", "rw2",
    "rwl", "sr2", "srf", "srw", "tif", "tiff", "webp", "x3f", "fff", "gpr", "insp" };
constexpr std::array<std::string_view, 22> videos{ "3g2", "3gp", "asf", "avi", "divx", "flv", "insv", "m2ts",
    "m2v", "m4v", "mjpeg", "mkv", "mod", "mov", "mp4", "mpeg", "mpg", "mts", "ogv", "tod", "webm", "wmv" };
// What cameras, phones and programs write beside a picture: changes made to it, and small previews.
constexpr std::array<std::string_view, 8> sidecars{ "aae", "arp", "cos", "dop", "lrv", "pp3", "thm", "xmp" };
constexpr std::array<std::string_view, 2> placeholders{ "nextcloud", "owncloud" };
constexpr std::array<std::string_view, 8> previewFolders{ "@eadir", "thumbnails", "thumbs", "_thumbs",
    "#recycle", "$recycle.bin", "lost+found", "trash" };
constexpr std::string_view previewPackage = ".lrdata";

std::string inSmallLetters(std::string_view text)
{
    std::string small(text);
    for (auto &character : small)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return small;
}

bool isOneOf(Names names, std::string_view name)
{
    return std::ranges::find(names, name) != names.end();
}

// Takes the extension off, which is empty where there is none.
std::string takeExtension(std::string_view &name)
{
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    auto extension = inSmallLetters(name.substr(dot + 1));
    name = name.substr(0, dot);
    return extension;
}

std::optional<PhotoKind> kindOf(std::string_view extension)
{
    if (isOneOf(images, extension))
        return PhotoKind::image;
    return isOneOf(videos, extension) ? std::optional(PhotoKind::video) : std::nullopt;
}

} // namespace

std::optional<PhotoFileName> PhotoFileName::of(std::string_view name)
{
    if (name.starts_with('.'))
        return std::nullopt;
    PhotoFileName parts;
    auto extension = takeExtension(name);
    if (isOneOf(placeholders, extension)) {
        parts.isPlaceholder = true;
        extension = takeExtension(name);
    }
    parts.kind = kindOf(extension);
    if (!parts.kind && !isOneOf(sidecars, extension))
        return std::nullopt;
    parts.stem = name;
    // What belongs to "shot.raw" is called "shot.xmp" by some programs, and "shot.raw.xmp" by others.
    if (auto inner = name; !parts.kind && kindOf(takeExtension(inner)))
        parts.stem = inner;
    return parts;
}

bool PhotoFileName::isLeftOut(std::string_view folderName)
{
    const auto name = inSmallLetters(folderName);
    return name.starts_with('.') || name.ends_with(previewPackage) || isOneOf(previewFolders, name);
}

} // namespace Quillbrook
