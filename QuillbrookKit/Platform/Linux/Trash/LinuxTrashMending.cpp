// The part of the Trash that mends what a kill has left of a move or a deletion.

#include "Platform/Linux/Trash/CarefulRename.h"
#include "Platform/Linux/Trash/HeldThing.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Platform/Linux/Trash/TrashNote.h"
#include "Platform/Linux/Trash/TrashReading.h"
#include "Platform/Linux/Trash/TreeEraser.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace Quillbrook {

namespace {

// Tells what in an open folder a deletion of one of these things has left: the thing itself, or, where it is
// known by its note, what has that note beside it. A note that outlived its thing is left too.
class LeftoverSearch
{
public:
    /// Calls and identities outlive this object.
    LeftoverSearch(const FileCalls &calls, int folder, const std::vector<const ThingIdentity *> &identities)
        : m_calls(calls)
        , m_folder(folder)
    {
        const bool keepsInodes = calls.keepsInodes(folder);
        for (const auto *identity : identities) {
            const bool isKnownByInode = identity->born != 0 && keepsInodes;
            if (isKnownByInode)
                m_inodes.emplace(identity->inode, identity->born);
            if (identity->note.empty())
                continue;
            m_notes.insert(identity->note);
            if (!isKnownByInode)
                m_notesBeside.insert(identity->note);
        }
    }

    [[nodiscard]] bool isMeant(const std::string &name) const
    {
        struct statx status = {};
        if (name.ends_with(TrashNote::suffix) && hasNoteOf(m_notes, name)) {
            const auto thing = name.substr(0, name.size() - TrashNote::suffix.size());
            return m_calls.statAt(m_folder, thing.c_str(), 0, status) != 0 && errno == ENOENT;
        }
        if (!m_inodes.empty() && m_calls.statAt(m_folder, name.c_str(), 0, status) == 0
            && m_inodes.contains({ status.stx_ino, bornAt(status) }))
            return true;
        return hasNoteOf(m_notesBeside, TrashNote::nameFor(name));
    }

private:
    using Notes = std::unordered_set<std::string_view>;

    [[nodiscard]] bool hasNoteOf(const Notes &notes, const std::string &name) const
    {
        if (notes.empty())
            return false;
        const auto text = TrashReading::note(m_calls, { .folder = m_folder, .name = name });
        return text && notes.contains(*text);
    }

    const FileCalls &m_calls;
    int m_folder;
    std::set<std::pair<std::uint64_t, qint64>> m_inodes;
    Notes m_notes;
    Notes m_notesBeside;
};

} // namespace

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

void LinuxTrash::finishErasing(const std::vector<GoneThing> &things)
{
    std::map<std::string, std::vector<const ThingIdentity *>> ofEachTrash;
    for (const auto &thing : things) {
        const auto place = spot(thing.trashPath);
        if (place && !place->isLeftover && thing.from.identity)
            ofEachTrash[place->trash].push_back(&*thing.from.identity);
    }
    for (const auto &[trash, identities] : ofEachTrash)
        finishErasingIn(trash, identities);
}

void LinuxTrash::finishErasingIn(
    const std::string &trash, const std::vector<const ThingIdentity *> &identities) const
{
    const auto open = m_folders.existing(trash);
    if (!open)
        return;
    const auto leftovers = m_folders.ownFolder(open->self.number(), "expunged", false);
    if (!leftovers)
        return;
    const int folder = leftovers->number();
    const LeftoverSearch search(m_calls, folder, identities);
    for (const auto &name : TrashReading::names(m_calls, folder))
        if (search.isMeant(name) && TreeEraser(m_calls, folder).erase(name.c_str()).isComplete())
            std::ignore = m_calls.unlinkAt(folder, TrashNote::nameFor(name).c_str(), 0);
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
