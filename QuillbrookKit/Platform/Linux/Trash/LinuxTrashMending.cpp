// The part of the Trash that mends what a kill has left of a move or a deletion.

#include "Platform/Linux/Trash/CarefulRename.h"
#include "Platform/Linux/Trash/HeldThing.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Platform/Linux/Trash/TrashNote.h"
#include "Platform/Linux/Trash/TrashReading.h"
#include "Platform/Linux/Trash/TreeEraser.h"

#include <cerrno>
#include <fcntl.h>
#include <tuple>

namespace Quillbrook {

void LinuxTrash::takeBackRight(const std::string &trashPath, const Provenance &from)
{
    if (!from.identity || !from.identity->mode)
        return;
    const auto thing = trashed(trashPath);
    if (!thing || thing->isLeftover)
        return;
    if (agrees(*thing, from))
        return takeBackRightAt(
            { .folder = thing->trash.files.number(), .name = thing->name }, *from.identity);
    // Where it was it is known by its identity alone. What somebody has put back since has no note any more,
    // and its rights are that person's.
    if (from.identity->born == 0 || !isNoteAlone(*thing, from.identity->note))
        return;
    if (const auto origin = HeldThing::at(m_calls, from.originalPath))
        takeBackRightAt({ .folder = origin->folder.number(), .name = origin->name }, *from.identity);
}

void LinuxTrash::takeBackRightAt(const FolderPlace &place, const ThingIdentity &identity) const
{
    constexpr unsigned modeBits = 07777;
    const FileDescriptor folder(
        m_calls.openAt(place.folder, place.name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW));
    struct statx status = {};
    if (!folder.isOpen() || m_calls.statAt(folder.number(), "", AT_EMPTY_PATH, status) != 0)
        return;
    const bool isSame
        = identity.born == 0 || (status.stx_ino == identity.inode && bornAt(status) == identity.born);
    if (isSame && (status.stx_mode & modeBits) == (*identity.mode | S_IWUSR))
        std::ignore = m_calls.changeMode(folder.number(), *identity.mode);
}

void LinuxTrash::finishErasing(const std::string &trashPath, const Provenance &from)
{
    const auto thing = trashed(trashPath);
    if (!thing || thing->isLeftover || !from.identity)
        return;
    const auto leftovers = m_folders.ownFolder(thing->trash.self.number(), "expunged", false);
    if (!leftovers)
        return;
    for (const auto &name : TrashReading::names(m_calls, leftovers->number())) {
        const FolderPlace aside{ .folder = leftovers->number(), .name = name };
        if (!isLeftoverOf(aside, *from.identity))
            continue;
        if (TreeEraser(m_calls, aside.folder).erase(name.c_str()).isComplete())
            std::ignore = m_calls.unlinkAt(aside.folder, TrashNote::nameFor(name).c_str(), 0);
    }
}

// The thing itself, or, told by its note, what has that note beside it. A note that outlived its thing is one
// too.
bool LinuxTrash::isLeftoverOf(const FolderPlace &aside, const ThingIdentity &identity) const
{
    const auto isItsNote = [&](const std::string &name) {
        return !identity.note.empty()
            && TrashReading::note(m_calls, { .folder = aside.folder, .name = name }) == identity.note;
    };
    if (aside.name.ends_with(TrashNote::suffix) && isItsNote(aside.name)) {
        struct statx status = {};
        const auto thing = aside.name.substr(0, aside.name.size() - TrashNote::suffix.size());
        return m_calls.statAt(aside.folder, thing.c_str(), 0, status) != 0 && errno == ENOENT;
    }
    if (identity.born != 0 && m_calls.keepsInodes(aside.folder))
        return TrashReading::hasIdentity(m_calls, aside, identity);
    return isItsNote(TrashNote::nameFor(aside.name));
}

void LinuxTrash::dropLoneNote(const std::string &trashPath, const std::string &text)
{
    if (const auto thing = trashed(trashPath); thing && !thing->isLeftover && isNoteAlone(*thing, text))
        dropNote(*thing);
}

// `text`, or the beginning of it, as the note of a thing that is not there.
bool LinuxTrash::isNoteAlone(const Trashed &thing, const std::string &text) const
{
    struct statx status = {};
    const bool isAlone
        = m_calls.statAt(thing.trash.files.number(), thing.name.c_str(), 0, status) != 0 && errno == ENOENT;
    const auto written = isAlone ? note(thing) : std::nullopt;
    return written && text.starts_with(*written);
}

} // namespace Quillbrook
