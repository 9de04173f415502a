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
#include <memory>
#include <mutex>

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

    using Trash::erase;
    using Trash::move;
    using Trash::restore;
    [[nodiscard]] std::expected<TrashedThing, QString> move(
        const std::string &path, const TrashOrder &order) override;
    [[nodiscard]] std::expected<void, QString> restore(
        const std::string &trashPath, const std::string &originalPath, const Provenance *from) override;
    [[nodiscard]] std::expected<void, QString> erase(
        const std::string &trashPath, const Provenance *from) override;
    [[nodiscard]] bool isStill(const std::string &trashPath, const Provenance &from) const override;
    [[nodiscard]] bool isAway(const std::string &trashPath) const override;
    void dropLoneNote(const std::string &trashPath, const std::string &note) override;
    void takeBackRight(const std::string &trashPath, const Provenance &from) override;
    void finishErasing(const std::vector<GoneThing> &things) override;
    [[nodiscard]] std::shared_ptr<void> hold() override;
    void flush(const std::vector<std::string> &folders) const override;
    [[nodiscard]] bool holds(const std::string &path) const override;
    [[nodiscard]] std::vector<TrashEntry> items(const std::string &path) const override;

private:
    /// What is to be moved, in the open folder that it lies in.
    struct Thing;
    /// Its way into the Trash, with what it was asked to ask.
    struct Journey;
    /// A path told of as one in a trash: directly in its `files`, or in its `expunged`.
    struct Spot
    {
        std::string trash{};
        std::string name{};
        bool isLeftover = false;
    };
    /// The same in the open trash.
    struct Trashed
    {
        TrashFolder trash{};
        std::string name{};
        bool isLeftover = false;
    };

    [[nodiscard]] std::expected<Thing, int> thingAt(const std::string &path) const;
    [[nodiscard]] std::optional<QString> objection(const Thing &thing) const;
    [[nodiscard]] std::shared_ptr<OpenTrash> open() const;
    [[nodiscard]] int moveToTrash(Journey &journey) const;
    [[nodiscard]] int moveInto(const TrashFolder &trash, Journey &journey) const;
    [[nodiscard]] int take(const TrashFolder &trash, Journey &journey, const std::string &name) const;
    [[nodiscard]] int writeNote(const FolderPlace &note, const std::string &text) const;

    [[nodiscard]] std::optional<Spot> spot(const std::string &path) const;
    [[nodiscard]] std::expected<Trashed, QString> trashed(const std::string &path) const;
    [[nodiscard]] int moveBack(const Trashed &thing, const std::string &originalPath) const;
    [[nodiscard]] bool agrees(const Trashed &thing, const Provenance &from) const;
    [[nodiscard]] bool noteObjects(const Trashed &thing, const ThingIdentity &identity) const;
    [[nodiscard]] bool noteAgrees(const Trashed &thing, const Provenance &from) const;
    [[nodiscard]] std::expected<void, QString> eraseLeftover(const Trashed &thing) const;
    [[nodiscard]] std::expected<void, QString> eraseThing(const Trashed &thing, const Provenance *from) const;
    [[nodiscard]] std::expected<void, QString> eraseAside(
        const Trashed &thing, const FolderPlace &aside) const;
    [[nodiscard]] std::expected<void, QString> eraseInPlace(const Trashed &thing) const;
    void finishErasingIn(
        const std::string &trash, const std::vector<const ThingIdentity *> &identities) const;
    void takeBackRightAt(const FolderPlace &place, const ThingIdentity &identity) const;
    void dropNote(const Trashed &thing) const;
    [[nodiscard]] bool isNoteAlone(const Trashed &thing, const std::string &text) const;
    [[nodiscard]] std::optional<std::string> note(const Trashed &thing) const;

    /// Runs `attempt`, which returns an errno, and again with the reserve given up where it failed for want
    /// of space.
    [[nodiscard]] int withReserve(const std::function<int()> &attempt) const;

    const TrashPlaces m_places;
    SpaceReserve &m_reserve;
    const Clock &m_clock;
    const FileCalls &m_calls;
    const TrashFolders m_folders;
    mutable std::mutex m_mutex;
    std::weak_ptr<OpenTrash> m_open;
};

} // namespace Quillbrook
