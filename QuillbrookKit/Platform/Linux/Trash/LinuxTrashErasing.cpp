// The part of the Trash that looks at what lies in it, and takes out of it.

#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Folders/ResolvedPath.h"
#include "Platform/Linux/Trash/CarefulRename.h"
#include "Platform/Linux/Trash/HeldThing.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Platform/Linux/Trash/TrashNote.h"
#include "Platform/Linux/Trash/TrashReading.h"
#include "Platform/Linux/Trash/TreeEraser.h"
#include "StandardisedPath.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <random>
#include <unordered_set>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view filesFolder = "files";
constexpr std::string_view leftoversFolder = "expunged";
constexpr int placeFlags = O_PATH | O_DIRECTORY;

std::string freshName()
{
    static thread_local std::mt19937_64 numbers{ std::random_device()() };
    return std::to_string(numbers());
}

// An open folder, and the paths of those that were made on the way to it, from the outermost.
struct FolderToFill
{
    FileDescriptor folder{};
    std::vector<std::string> made{};
    int error = 0;
};

FolderToFill folderToFill(const FileCalls &calls, const std::string &path)
{
    constexpr mode_t byUmask = 0777;
    FolderToFill result{ .folder = FileDescriptor(calls.openAt(AT_FDCWD, path.c_str(), placeFlags)) };
    if (result.folder.isOpen() || errno != ENOENT) {
        result.error = result.folder.isOpen() ? 0 : errno;
        return result;
    }
    for (auto end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const auto folder = path.substr(0, end);
        if (calls.makeFolderAt(AT_FDCWD, folder.c_str(), byUmask) == 0) {
            result.made.push_back(folder);
        } else if (errno != EEXIST) {
            // In a folder that may not be written to, some systems answer EACCES or EROFS even where the name
            // is there already.
            struct statx status = {};
            const auto error = errno;
            if (calls.statAt(AT_FDCWD, folder.c_str(), 0, status) != 0) {
                result.error = error;
                return result;
            }
        }
        if (end == std::string::npos)
            break;
    }
    result.folder = FileDescriptor(calls.openAt(AT_FDCWD, path.c_str(), placeFlags));
    result.error = result.folder.isOpen() ? 0 : errno;
    return result;
}

} // namespace

std::optional<LinuxTrash::Spot> LinuxTrash::spot(const std::string &path) const
{
    const auto position = m_places.position(standardisedPath(path, {}));
    const auto slash = position ? position->inner.find('/') : std::string::npos;
    if (slash == std::string::npos || path.find('\0') != std::string::npos)
        return std::nullopt;
    const auto folder = position->inner.substr(0, slash);
    const auto name = position->inner.substr(slash + 1);
    const bool isInPlace = folder == filesFolder || folder == leftoversFolder;
    if (!isInPlace || name.contains('/'))
        return std::nullopt;
    return Spot{ .trash = position->trash, .name = name, .isLeftover = folder == leftoversFolder };
}

std::expected<LinuxTrash::Trashed, QString> LinuxTrash::trashed(const std::string &path) const
{
    const auto place = spot(path);
    if (!place)
        return std::unexpected(u"It is not in the Trash."_s);
    auto trash = m_folders.existing(place->trash);
    if (!trash)
        return std::unexpected(LinuxErrorText::sentence(trash.error()));
    return Trashed{ .trash = std::move(*trash), .name = place->name, .isLeftover = place->isLeftover };
}

std::expected<void, QString> LinuxTrash::restore(
    const std::string &trashPath, const std::string &originalPath, const Provenance *from)
{
    const auto thing = trashed(trashPath);
    if (!thing)
        return std::unexpected(thing.error());
    if (thing->isLeftover)
        return std::unexpected(u"It is being deleted already."_s);
    if (from != nullptr && !agrees(*thing, *from))
        return std::unexpected(somethingElse());
    if (const auto error = withReserve([&]() -> int { return moveBack(*thing, originalPath); }); error != 0)
        return std::unexpected(LinuxErrorText::sentence(error));
    return {};
}

int LinuxTrash::moveBack(const Trashed &thing, const std::string &originalPath) const
{
    const auto place = SplitPath::of(originalPath);
    if (!place)
        return EINVAL;
    const auto target = folderToFill(m_calls, place->folder);
    const auto error = target.error != 0
        ? target.error
        : CarefulRename::move(m_calls, { .folder = thing.trash.files.number(), .name = thing.name },
            { .folder = target.folder.number(), .name = place->name });
    if (error == 0)
        dropNote(thing);
    else
        for (auto folder = target.made.rbegin(); folder != target.made.rend(); ++folder)
            std::ignore = m_calls.unlinkAt(AT_FDCWD, folder->c_str(), AT_REMOVEDIR);
    return error;
}

std::expected<void, QString> LinuxTrash::erase(const std::string &trashPath, const Provenance *from)
{
    const auto thing = trashed(trashPath);
    if (!thing)
        return std::unexpected(thing.error());
    if (thing->isLeftover)
        return from == nullptr ? eraseLeftover(*thing) : std::unexpected(somethingElse());
    if (from != nullptr && !agrees(*thing, *from))
        return std::unexpected(somethingElse());
    return eraseThing(*thing, from);
}

std::expected<void, QString> LinuxTrash::eraseLeftover(const Trashed &thing) const
{
    const auto leftovers
        = m_folders.ownFolder(thing.trash.self.number(), std::string(leftoversFolder), false);
    if (!leftovers)
        return std::unexpected(LinuxErrorText::sentence(leftovers.error()));
    const auto erasure = TreeEraser(m_calls, leftovers->number()).erase(thing.name.c_str());
    if (!erasure.isComplete())
        return std::unexpected(LinuxFileRemoval::leftText(erasure));
    return {};
}

std::expected<void, QString> LinuxTrash::eraseThing(const Trashed &thing, const Provenance *from) const
{
    FileDescriptor leftovers;
    const FolderPlace inTrash{ .folder = thing.trash.files.number(), .name = thing.name };
    FolderPlace aside{ .name = freshName() };
    const auto error = withReserve([&] {
        auto folder = m_folders.ownFolder(thing.trash.self.number(), std::string(leftoversFolder), true);
        if (!folder)
            return folder.error();
        leftovers = std::move(*folder);
        aside.folder = leftovers.number();
        return CarefulRename::move(m_calls, inTrash, aside);
    });
    if (error != 0)
        return eraseInPlace(thing);
    // The name may have been given away between the question and the move.
    if (from != nullptr && from->identity && from->identity->born != 0
        && !TrashReading::hasIdentity(m_calls, aside, *from->identity)) {
        std::ignore = CarefulRename::move(m_calls, aside, inTrash);
        return std::unexpected(somethingElse());
    }
    return eraseAside(thing, aside);
}

std::expected<void, QString> LinuxTrash::eraseAside(const Trashed &thing, const FolderPlace &aside) const
{
    const FolderPlace inTrash{ .folder = thing.trash.files.number(), .name = thing.name };
    const FolderPlace note{ .folder = thing.trash.info.number(), .name = TrashNote::nameFor(thing.name) };
    const FolderPlace noteAside{ .folder = aside.folder, .name = TrashNote::nameFor(aside.name) };
    const bool isNoteAside = CarefulRename::move(m_calls, note, noteAside) == 0;
    const auto erasure = TreeEraser(m_calls, aside.folder).erase(aside.name.c_str());
    const bool isWhole = !erasure.isComplete() && erasure.removed == 0;
    if (isWhole && CarefulRename::move(m_calls, aside, inTrash) == 0) {
        if (isNoteAside)
            std::ignore = CarefulRename::move(m_calls, noteAside, note);
        return std::unexpected(LinuxFileRemoval::leftText(erasure));
    }
    if (isNoteAside)
        std::ignore = m_calls.unlinkAt(noteAside.folder, noteAside.name.c_str(), 0);
    else
        dropNote(thing);
    if (!erasure.isComplete())
        return std::unexpected(LinuxFileRemoval::leftText(erasure));
    return {};
}

// Where it can't be put aside: a folder of another user's, or a file system without any room.
std::expected<void, QString> LinuxTrash::eraseInPlace(const Trashed &thing) const
{
    const auto erasure = TreeEraser(m_calls, thing.trash.files.number()).erase(thing.name.c_str());
    const bool isGone = erasure.isComplete() || (erasure.firstError == ENOENT && erasure.firstPath.empty());
    if (isGone)
        dropNote(thing);
    if (!erasure.isComplete())
        return std::unexpected(LinuxFileRemoval::leftText(erasure));
    return {};
}

// Where that fails nothing is lost: readers of the Trash leave out a note that has no thing.
void LinuxTrash::dropNote(const Trashed &thing) const
{
    std::ignore = m_calls.unlinkAt(thing.trash.info.number(), TrashNote::nameFor(thing.name).c_str(), 0);
}

bool LinuxTrash::isStill(const std::string &trashPath, const Provenance &from) const
{
    const auto thing = trashed(trashPath);
    return thing && !thing->isLeftover && agrees(*thing, from);
}

bool LinuxTrash::isAway(const std::string &trashPath) const
{
    return m_places.isOnAbsentVolume(standardisedPath(trashPath, {}));
}

bool LinuxTrash::agrees(const Trashed &thing, const Provenance &from) const
{
    const FolderPlace place{ .folder = thing.trash.files.number(), .name = thing.name };
    if (from.identity && from.identity->born != 0 && m_calls.keepsInodes(place.folder))
        return TrashReading::hasIdentity(m_calls, place, *from.identity)
            && !noteObjects(thing, *from.identity);
    struct statx status = {};
    return m_calls.statAt(place.folder, place.name.c_str(), 0, status) == 0 && noteAgrees(thing, from);
}

// The thing itself, and thrown away anew by somebody else since it was moved here. A note that is gone, or
// that a loss of power has left in pieces, says nothing.
bool LinuxTrash::noteObjects(const Trashed &thing, const ThingIdentity &identity) const
{
    const auto text = note(thing);
    return text && !identity.note.empty() && *text != identity.note && TrashNote::isWhole(*text);
}

bool LinuxTrash::noteAgrees(const Trashed &thing, const Provenance &from) const
{
    const auto text = note(thing);
    if (!text)
        return false;
    if (from.identity)
        return !from.identity->note.empty() && *text == from.identity->note;
    const auto origin = TrashNote::origin(*text);
    if (!origin || !TrashNote::isOf(*text, from.movedAt))
        return false;
    // The note tells of the path as it was given, or, seen from the top of a volume, as it is without links.
    const auto isOrigin = [&](const std::string &path) -> bool {
        return origin->starts_with('/') ? path == *origin : path.ends_with('/' + *origin);
    };
    return isOrigin(standardisedPath(from.originalPath, {}))
        || isOrigin(ResolvedPath::withoutLinks(from.originalPath));
}

std::optional<std::string> LinuxTrash::note(const Trashed &thing) const
{
    return TrashReading::note(
        m_calls, { .folder = thing.trash.info.number(), .name = TrashNote::nameFor(thing.name) });
}

std::vector<TrashEntry> LinuxTrash::items(const std::string &path) const
{
    const auto position = m_places.position(standardisedPath(path, {}));
    const auto trash = position ? m_folders.existing(position->trash) : std::unexpected(ENOENT);
    if (!trash)
        return {};
    const auto folder = position->inner.substr(0, position->inner.find('/'));
    std::vector<TrashEntry> entries;
    if (folder != leftoversFolder) {
        const auto names = TrashReading::names(m_calls, trash->info.number());
        const std::unordered_set<std::string> notes(names.begin(), names.end());
        for (const auto &name : TrashReading::names(m_calls, trash->files.number())) {
            const auto note = TrashNote::nameFor(name);
            entries.push_back({ .path = trash->path + "/files/" + name,
                .note = notes.contains(note) ? trash->path + "/info/" + note : std::string() });
        }
    }
    if (folder == filesFolder)
        return entries;
    const auto leftovers = m_folders.ownFolder(trash->self.number(), std::string(leftoversFolder), false);
    if (leftovers)
        for (const auto &name : TrashReading::names(m_calls, leftovers->number()))
            entries.push_back({ .path = trash->path + "/expunged/" + name });
    return entries;
}

} // namespace Quillbrook
