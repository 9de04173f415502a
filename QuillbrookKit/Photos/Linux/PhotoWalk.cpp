#include "Photos/Linux/PhotoWalk.h"

#include "Photos/Linux/PhotoStatus.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/EntryBatch.h"
#include "Platform/Linux/Folders/OpenFolders.h"

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <functional>
#include <utility>

namespace Quillbrook {

namespace {

constexpr size_t batchBytes = 262144;
// What no path reaches can't be asked about again, nor moved: one such picture would keep all others from
// going.
constexpr size_t longestPath = PATH_MAX - 1;
constexpr qint64 millisecondsOfSecond = 1000;
// Files of one shot are written one after the other.
constexpr std::uint64_t secondsOfShot = 60;

// Those that are complete, before 1970 too.
qint64 wholeSeconds(qint64 milliseconds)
{
    const auto rest = milliseconds % millisecondsOfSecond;
    return milliseconds / millisecondsOfSecond - (rest < 0 ? 1 : 0);
}

} // namespace

/// A file of the open folder that is part of a shot.
struct PhotoWalk::Seen
{
    std::string name{};
    size_t stemLength = 0;
    std::optional<PhotoKind> kind{};
    bool isPlaceholder = false;
    /// Told by its name.
    std::optional<qint64> named{};
    PhotoStatus status{};

    [[nodiscard]] std::string_view stem() const { return std::string_view(name).substr(0, stemLength); }
    [[nodiscard]] qint64 made() const { return named.value_or(status.made); }
};

PhotoWalk::PhotoWalk(PhotoQuery query, Keeps keeps, PhotoWork &work)
    : m_query(std::move(query))
    , m_from(-wholeSeconds(-m_query.from.toMSecsSinceEpoch()))
    , m_to(wholeSeconds(m_query.to.toMSecsSinceEpoch()))
    , m_keeps(std::move(keeps))
    , m_work(work)
{
}

bool PhotoWalk::walk(const Root &root)
{
    const FileDescriptor top(::open(root.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!top.isOpen())
        return !m_work.isStopped;
    OpenFolders folders(root.path, top.number());
    EntryBatch batch(batchBytes);
    m_open = { root.path };
    while (!m_open.empty() && !m_work.isStopped) {
        const auto path = std::move(m_open.back());
        m_open.pop_back();
        if (const auto folder = folders.open(path); folder >= 0)
            readFolder(folder, path, batch, root);
    }
    return !m_work.isStopped;
}

std::shared_ptr<const LinuxPhotoAssets> PhotoWalk::take()
{
    std::ranges::stable_sort(m_shots, {}, &PhotoShot::made);
    return std::make_shared<const LinuxPhotoAssets>(std::move(m_folders), std::move(m_shots));
}

void PhotoWalk::readFolder(int folder, const std::string &path, EntryBatch &batch, const Root &root)
{
    std::vector<Seen> seen;
    while (!m_work.isStopped && batch.read(folder)) {
        while (const auto *entry = batch.next()) {
            const std::string_view name(entry->d_name);
            if (path.size() + 1 + name.size() > longestPath)
                continue;
            // Where the kind is not told, both are tried: opening tells a folder, and asking a file.
            if (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN)
                if (!PhotoFileName::isLeftOut(name))
                    if (auto below = path + '/' + entry->d_name; !root.without.contains(below))
                        m_open.push_back(std::move(below));
            if (entry->d_type != DT_REG && entry->d_type != DT_UNKNOWN)
                continue;
            if (const auto parts = PhotoFileName::of(name)) {
                const auto moment = CameraName::moment(name);
                seen.push_back({ .name = std::string(name),
                    .stemLength = parts->stem.size(),
                    .kind = parts->kind,
                    .isPlaceholder = parts->isPlaceholder,
                    .named = moment ? std::optional(m_clock.seconds(*moment)) : std::nullopt });
            }
        }
    }
    m_work.done += static_cast<qsizetype>(seen.size());
    const auto shotsBefore = m_shots.size();
    m_folders.push_back(path);
    takeShots(folder, seen, root);
    const bool isKept
        = m_shots.size() > shotsBefore && m_keeps(path + '/' + m_shots[shotsBefore].files.front().name);
    if (isKept)
        m_shots.resize(shotsBefore);
    if (m_shots.size() == shotsBefore)
        m_folders.pop_back();
}

void PhotoWalk::takeShots(int folder, std::vector<Seen> &seen, const Root &root)
{
    std::ranges::sort(seen, {}, &Seen::stem);
    for (size_t first = 0; first < seen.size() && !m_work.isStopped;) {
        auto end = first + 1;
        while (end < seen.size() && seen[end].stem() == seen[first].stem())
            ++end;
        takeShotsOfStem(folder, std::span(seen).subspan(first, end - first), root);
        first = end;
    }
}

// The files of one stem are one shot as long as they follow closely on one another.
void PhotoWalk::takeShotsOfStem(int folder, std::span<Seen> files, const Root &root)
{
    // What names tell spares the question about most files that are not asked for.
    const auto mayBeWanted = [this](const Seen &file) { return !file.named || isInRange(*file.named); };
    if (std::ranges::none_of(files, mayBeWanted))
        return;
    const auto isGone = [folder](Seen &file) {
        const auto status = PhotoStatus::of(folder, file.name.c_str());
        file.status = status.value_or(PhotoStatus());
        return !status;
    };
    files = files.first(files.size() - std::ranges::remove_if(files, isGone).size());
    std::ranges::sort(files, {}, &Seen::made);
    for (size_t first = 0; first < files.size();) {
        auto end = first + 1;
        // Unsigned, because no difference of two moments is too large for that.
        while (end < files.size()
            && std::uint64_t(files[end].made()) - std::uint64_t(files[end - 1].made()) <= secondsOfShot)
            ++end;
        addShot(files.subspan(first, end - first), root);
        first = end;
    }
}

void PhotoWalk::addShot(std::span<const Seen> files, const Root &root)
{
    PhotoShot shot{ .kind = PhotoKind::video };
    bool isAny = false;
    for (const auto &file : files) {
        if (!file.kind)
            continue;
        shot.made = isAny ? std::min(shot.made, file.made()) : file.made();
        shot.kind = file.kind == PhotoKind::image ? PhotoKind::image : shot.kind;
        isAny = true;
    }
    if (!isAny || !isInRange(shot.made) || !isWanted(shot.kind, root))
        return;
    for (const auto &file : files)
        shot.files.push_back({ .folder = static_cast<std::uint32_t>(m_folders.size() - 1),
            .name = file.name,
            .inode = file.status.inode,
            .born = file.status.born,
            .bytes = file.status.bytes,
            .isPlaceholder = file.isPlaceholder });
    std::ranges::stable_sort(shot.files, std::ranges::greater(), &PhotoFile::bytes);
    m_shots.push_back(std::move(shot));
}

bool PhotoWalk::isWanted(PhotoKind kind, const Root &root) const
{
    return std::ranges::find(m_query.kinds, kind) != m_query.kinds.end()
        && std::ranges::find(root.kinds, kind) != root.kinds.end();
}

bool PhotoWalk::isInRange(qint64 made) const
{
    return made >= m_from && made <= m_to;
}

} // namespace Quillbrook
