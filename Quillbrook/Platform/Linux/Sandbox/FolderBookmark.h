#pragma once

// The form in which a picked folder is kept. Pure; callable from any thread.

#include <QByteArray>

#include <optional>
#include <string>

namespace Quillbrook {

/// A folder as the document portal shows it: below its mount point lies a folder for each document.
struct PortalDocument
{
    std::string id{};
    /// What follows the id in the path. Relative, in raw bytes.
    std::string rest{};

    bool operator==(const PortalDocument &) const = default;
};

struct FolderBookmark
{
    /// Absolute, in raw bytes.
    std::string path{};
    std::optional<PortalDocument> document{};

    bool operator==(const FolderBookmark &) const = default;
};

[[nodiscard]] QByteArray encode(const FolderBookmark &bookmark);
/// Absent for whatever `encode` can't have written.
[[nodiscard]] std::optional<FolderBookmark> decodeFolderBookmark(const QByteArray &data);

/// The document that a path names below a mount point of the portal; absent when it names none.
[[nodiscard]] std::optional<PortalDocument> portalDocument(
    const std::string &path, const std::string &mountPoint);

} // namespace Quillbrook
