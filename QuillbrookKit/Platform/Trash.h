#pragma once

// The desktop's Trash: where a thing lies until somebody empties it, with a note of where it came from.
// Paths are absolute and raw bytes; a link given by its own path is moved, brought back or erased as a link.
// Nothing is ever copied, replaced, or deleted in place of being moved. Callable from any thread, and blocks
// on the disk. Errors are texts for a person to read, sentences that begin with a capital and end with a
// full stop; where one is told, everything lies where it lay before, unless said otherwise.

#include "Platform/TakenThing.h"

#include <QCoreApplication>

#include <expected>
#include <memory>
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

/// Where a thing lies in the Trash, or is to lie, and by what it is known there.
struct TrashedThing
{
    std::string path{};
    std::optional<ThingIdentity> identity{};
};

/// What a move to the Trash has to ask on its way.
struct TrashOrder
{
    TakingJudge judge{};
    /// Told of each name that is tried, before its note is made. An error ends the move.
    std::function<std::expected<void, QString>(const TrashedThing &planned)> announce{};
};

/// What is known of a thing that was moved to the Trash. A `movedAt` that is not valid fits no note.
struct Provenance
{
    std::string originalPath{};
    QDateTime movedAt{};
    std::optional<ThingIdentity> identity{};
};

/// A thing that is no longer where it lay in the Trash, and what is known of it.
struct GoneThing
{
    std::string trashPath{};
    Provenance from{};
};

class Trash
{
public:
    virtual ~Trash() = default;

    /// Moves what lies at `path` into the Trash of its own volume and tells where it lies now, which is what
    /// `restore` and `erase` want. What is a mount, holds one, is or holds a trash, or lies in one already is
    /// refused, and so is everything on a volume that can have no trash.
    [[nodiscard]] virtual std::expected<TrashedThing, QString> move(
        const std::string &path, const TrashOrder &order)
        = 0;
    [[nodiscard]] std::expected<std::string, QString> move(const std::string &path)
    {
        const auto moved = move(path, TrashOrder());
        return moved ? std::expected<std::string, QString>(moved->path) : std::unexpected(moved.error());
    }

    /// While what it gives lives, the folders of a trash stay open from one move to the next, which makes a
    /// clearance of many things faster. A drive can't be taken out meanwhile.
    [[nodiscard]] virtual std::shared_ptr<void> hold() { return nullptr; }

    /// Moves a thing of the Trash back to `originalPath` and drops its note. Folders on the way that are gone
    /// are made again; what lies at `originalPath` by now is never replaced, but an error. Where `from` is
    /// given, something else under that name stays where it is.
    [[nodiscard]] virtual std::expected<void, QString> restore(
        const std::string &trashPath, const std::string &originalPath, const Provenance *from)
        = 0;
    [[nodiscard]] std::expected<void, QString> restore(
        const std::string &trashPath, const std::string &originalPath)
    {
        return restore(trashPath, originalPath, nullptr);
    }

    /// Deletes a thing of the Trash for good, together with its note. It is out of the Trash before its first
    /// file goes, so that no half of it can be put back. On an error either all of it is still in the Trash
    /// with its note, or what could not be deleted is left, mostly among the leftovers that `items` lists. A
    /// path that is not directly in a trash, or among its leftovers, is refused. Where `from` is given,
    /// something else under that name stays.
    [[nodiscard]] virtual std::expected<void, QString> erase(
        const std::string &trashPath, const Provenance *from)
        = 0;
    [[nodiscard]] std::expected<void, QString> erase(const std::string &trashPath)
    {
        return erase(trashPath, nullptr);
    }

    /// Whether what lies at `trashPath` is what was moved there: by its identity where `from` has one, else
    /// only where its note says the same place and the same moment. What can't be told is something else.
    [[nodiscard]] virtual bool isStill(const std::string &trashPath, const Provenance &from) const = 0;

    /// Whether the trash of `trashPath` is that of a drive that is not connected now, so that nothing can be
    /// told of what lies in it.
    [[nodiscard]] virtual bool isAway(const std::string &trashPath) const = 0;

    /// Drops the note of a thing that never came to `trashPath`, where it is `note` or the beginning of it,
    /// as a kill leaves it. Nothing happens where a thing lies there, or the note is another.
    virtual void dropLoneNote(const std::string &trashPath, const std::string &note) = 0;

    /// Takes back the right that a move which was cut short has lent to a folder: in the Trash, or where it
    /// was, as long as its note lies in the Trash without it. Nothing happens to what is not that folder, or
    /// has other rights by now.
    virtual void takeBackRight(const std::string &trashPath, const Provenance &from) = 0;

    /// Deletes what an `erase` of one of these things that was cut short has left among the leftovers.
    /// Nothing happens where there is nothing, or it can't be told. The leftovers of a trash are looked
    /// through once, however many the things are.
    virtual void finishErasing(const std::vector<GoneThing> &things) = 0;

    /// Waits until the volume of each of these folders has everything on its disk that was moved or deleted
    /// there, the notes in its trash among it. A folder that is gone by now is passed over. Takes as long as
    /// the disks do: not for the main thread.
    virtual void flush(const std::vector<std::string> &folders) const = 0;

    /// Whether `path` is a trash of this user, or lies anywhere in one. Told by where trashes are kept, also
    /// of paths that are not there.
    [[nodiscard]] virtual bool holds(const std::string &path) const = 0;

    /// What `erase` takes of the trash that `path` is or lies in, in the order of their names: things with
    /// their notes, and leftovers of deletions, or only the ones or the others where `path` is the folder
    /// that keeps them. Empty where there is no trash, or it can't be read.
    [[nodiscard]] virtual std::vector<TrashEntry> items(const std::string &path) const = 0;

    /// Why a thing stays that is not the one that was moved.
    [[nodiscard]] static QString somethingElse()
    {
        return QCoreApplication::translate(
            "Trash", "Something else lies in the Trash under its name by now.");
    }
};

} // namespace Quillbrook
