#pragma once

// The desktop's Trash as freedesktop.org specifies it: in the folder `files` of a trash lies the thing, in
// `info` a note of where it was and when it went. The note is made first, which reserves the name, and the
// thing follows by one rename; a failure on the way takes the note back. What is being deleted lies in
// `expunged`, from where no desktop offers to put it back.

#include "Platform/Linux/Trash/FileCalls.h"
#include "Platform/Linux/Trash/TrashFolders.h"
#include "Platform/Linux/Trash/TrashPlaces.h"
#include "Platform/Trash.h"

#include <functional>

namespace Quillbrook {

class Clock;
class SpaceReserve;
struct FolderPlace;

class LinuxTrash final : public Trash
{
public:
    /// All references outlive this object.
    LinuxTrash(TrashPlaces places, SpaceReserve &reserve, const Clock &clock,
        const FileCalls &calls = FileCalls::system());

    [[nodiscard]] std::expected<std::string, QString> move(const std::string &path) override;
    [[nodiscard]] std::expected<void, QString> restore(
        const std::string &trashPath, const std::string &originalPath) override;
    [[nodiscard]] std::expected<void, QString> erase(const std::string &trashPath) override;
    [[nodiscard]] bool mayComeFrom(const std::string &trashPath, const std::string &originalPath,
        const QDateTime &movedAt) const override;
    [[nodiscard]] bool holds(const std::string &path) const override;
    [[nodiscard]] std::vector<TrashEntry> items(const std::string &path) const override;

private:
    /// What is to be moved, in the open folder that it lies in.
    struct Thing;
    /// A path told of as one in a trash: directly in its `files`, or in its `expunged`.
    struct Trashed;

    [[nodiscard]] std::expected<Thing, int> thingAt(const std::string &path) const;
    [[nodiscard]] std::optional<QString> objection(const Thing &thing) const;
    [[nodiscard]] std::expected<std::string, int> moveToTrash(const Thing &thing) const;
    [[nodiscard]] std::expected<std::string, int> moveInto(
        const TrashFolder &trash, const Thing &thing) const;
    [[nodiscard]] int writeNote(const FolderPlace &note, const std::string &text) const;

    [[nodiscard]] std::expected<Trashed, QString> trashed(const std::string &path) const;
    [[nodiscard]] int moveBack(const Trashed &thing, const std::string &originalPath) const;
    [[nodiscard]] std::expected<void, QString> eraseThing(const Trashed &thing) const;
    [[nodiscard]] std::expected<void, QString> eraseInPlace(const Trashed &thing) const;
    void dropNote(const Trashed &thing) const;
    [[nodiscard]] std::optional<std::string> note(const Trashed &thing) const;

    /// Runs `attempt`, which returns an errno, and again with the reserve given up where it failed for want
    /// of space.
    [[nodiscard]] int withReserve(const std::function<int()> &attempt) const;

    const TrashPlaces m_places;
    SpaceReserve &m_reserve;
    const Clock &m_clock;
    const FileCalls &m_calls;
    const TrashFolders m_folders;
};

} // namespace Quillbrook
