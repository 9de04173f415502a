#pragma once

// The desktop's Trash: where a thing lies until somebody empties it, with a note of where it came from.
// Paths are absolute and raw bytes; a link given by its own path is moved, brought back or erased as a link.
// Nothing is ever copied, replaced, or deleted in place of being moved. Callable from any thread, and blocks
// on the disk. Errors are texts for a person to read, sentences that begin with a capital and end with a
// full stop; where one is told, everything lies where it lay before, unless said otherwise.

#include <QDateTime>
#include <QString>

#include <expected>
#include <string>
#include <vector>

namespace Quillbrook {

/// A thing in the Trash. `note` is the path of the file that tells where it came from, empty where there is
/// none.
struct TrashEntry
{
    std::string path{};
    std::string note{};

    bool operator==(const TrashEntry &) const = default;
};

class Trash
{
public:
    virtual ~Trash() = default;

    /// Moves what lies at `path` into the Trash of its own volume and tells where it lies now, which is what
    /// `restore` and `erase` want. What is a mount, holds one, is or holds a trash, or lies in one already is
    /// refused, and so is everything on a volume that can have no trash.
    [[nodiscard]] virtual std::expected<std::string, QString> move(const std::string &path) = 0;

    /// Moves a thing of the Trash back to `originalPath` and drops its note. Folders on the way that are gone
    /// are made again; what lies at `originalPath` by now is never replaced, but an error.
    [[nodiscard]] virtual std::expected<void, QString> restore(
        const std::string &trashPath, const std::string &originalPath)
        = 0;

    /// Deletes a thing of the Trash for good, together with its note. It is out of the Trash before its first
    /// file goes, so that no half of it can be put back. On an error either all of it is still in the Trash
    /// with its note, or what could not be deleted is left, mostly among the leftovers that `items` lists. A
    /// path that is not directly in a trash, or among its leftovers, is refused.
    [[nodiscard]] virtual std::expected<void, QString> erase(const std::string &trashPath) = 0;

    /// Whether a thing of the Trash may be what was moved there from `originalPath` at `movedAt`: false only
    /// where its note says that it came from elsewhere or at another time, as it does when the Trash was
    /// emptied or the thing put back, and the name given again. A `movedAt` that is not valid fits any time.
    [[nodiscard]] virtual bool mayComeFrom(
        const std::string &trashPath, const std::string &originalPath, const QDateTime &movedAt) const = 0;

    /// Whether `path` is a trash of this user, or lies anywhere in one. Told by where trashes are kept, also
    /// of paths that are not there.
    [[nodiscard]] virtual bool holds(const std::string &path) const = 0;

    /// What `erase` takes of the trash that `path` is or lies in, in the order of their names: things with
    /// their notes, and leftovers of deletions, or only the ones or the others where `path` is the folder
    /// that keeps them. Empty where there is no trash, or it can't be read.
    [[nodiscard]] virtual std::vector<TrashEntry> items(const std::string &path) const = 0;
};

} // namespace Quillbrook
