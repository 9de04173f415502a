#include "Scan/ScanWorker.h"

#include "Fatal.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace Quillbrook {

namespace {

constexpr size_t entryRoom = 4096;
constexpr size_t nameRoom = 262144;
constexpr size_t childFolderRoom = 1024;
constexpr size_t ownJobRoom = 256;
// Two children of its own let a worker run on down one branch without touching the queue.
constexpr size_t jobsKept = 2;

constexpr std::array<std::string_view, 5> packageSuffixes{
    ".app",
    ".bundle",
    ".framework",
    ".xcodeproj",
    ".photoslibrary",
};

bool isPackageName(std::string_view name)
{
    return std::ranges::any_of(packageSuffixes,
        [name](std::string_view suffix) { return name.size() > suffix.size() && name.ends_with(suffix); });
}

bool isEntered(FileTree::Flags flags)
{
    using enum FileTree::Flags;
    return contains(flags, directory) && !contains(flags, symlink) && !contains(flags, mountPoint);
}

} // namespace

ScanWorker::ScanWorker(ScanState &state, std::unique_ptr<DirectoryReader> reader)
    : m_state(state)
    , m_reader(std::move(reader))
{
    m_entries.reserve(entryRoom);
    m_names.reserve(nameRoom);
    m_childFolders.reserve(childFolderRoom);
    m_ownJobs.reserve(ownJobRoom);
}

void ScanWorker::run()
{
    while (const auto job = nextJob()) {
        if (m_state.cancelled)
            m_state.queue.finishOne();
        else
            process(*job);
    }
}

std::optional<ScanJob> ScanWorker::nextJob()
{
    if (m_ownJobs.empty())
        return m_state.queue.take();
    std::optional<ScanJob> job(std::move(m_ownJobs.back()));
    m_ownJobs.pop_back();
    return job;
}

void ScanWorker::process(const ScanJob &job)
{
    m_entries.clear();
    m_names.clear();
    m_childFolders.clear();
    m_newJobs.clear();
    const bool opened = readFolder(job);
    addToTree(job, opened);
    collectJobs(job);
    if (!opened)
        ++m_state.unreadable;
    handOver();
}

bool ScanWorker::readFolder(const ScanJob &job)
{
    if (!m_reader->open(job.path, job.node == 0))
        return false;
    Totals totals;
    for (auto records = m_reader->next(); !records.empty(); records = m_reader->next()) {
        for (const auto &record : records)
            decode(record, totals);
    }
    m_state.filesSeen.fetch_add(totals.files, std::memory_order_relaxed);
    m_state.bytesSeen.fetch_add(totals.bytes, std::memory_order_relaxed);
    m_reader->close();
    return true;
}

void ScanWorker::decode(const DirectoryRecord &record, Totals &totals)
{
    using enum FileTree::Flags;
    if (record.name.empty())
        return;
    auto flags = record.isMountPoint ? mountPoint : none;
    if (record.type == DirectoryRecord::Type::directory)
        flags |= directory;
    else if (record.type == DirectoryRecord::Type::symlink)
        flags |= symlink;
    const bool isElsewhere
        = m_state.staysOnOneDevice && record.device != 0 && record.device != m_state.rootDevice;
    if (isElsewhere)
        flags |= mountPoint;
    qint64 size = 0;
    if (contains(flags, directory)) {
        if (isPackageName(record.name))
            flags |= package;
    } else if (contains(flags, mountPoint)) {
        size = isElsewhere ? 0 : record.allocatedSize;
    } else {
        size = countedSize(record);
        totals.files += 1;
        if (__builtin_add_overflow(totals.bytes, size, &totals.bytes))
            fatal("the sizes of a folder's files add up to more than 2^63 bytes");
    }
    m_entries.push_back({ .nameStart = static_cast<qsizetype>(m_names.size()),
        .nameLength = static_cast<qsizetype>(record.name.size()),
        .size = size,
        .flags = flags });
    m_names.append(record.name);
}

// A file with several links counts on the first of them that any worker happens to read.
qint64 ScanWorker::countedSize(const DirectoryRecord &record)
{
    if (record.linkCount < 2 || record.fileId == 0)
        return record.allocatedSize;
    const std::scoped_lock lock(m_state.fileLock);
    return m_state.countedFiles.insert(record.fileDevice, record.fileId) ? record.allocatedSize : 0;
}

void ScanWorker::addToTree(const ScanJob &job, bool opened)
{
    qint32 first = FileTree::noNode;
    {
        const std::scoped_lock lock(m_state.treeLock);
        if (!opened)
            m_state.tree->setUnreadable(job.node);
        first = m_state.tree->addNodes(job.node, m_entries, m_names);
    }
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (isEntered(m_entries[i].flags))
            m_childFolders.push_back({ i, first + static_cast<qint32>(i) });
    }
}

void ScanWorker::collectJobs(const ScanJob &job)
{
    if (m_childFolders.empty())
        return;
    const auto *allowed = m_state.admission.namesAllowedIn(job.path);
    m_newJobs.reserve(m_childFolders.size());
    for (const auto &child : m_childFolders) {
        const auto name = nameOf(m_entries[child.entry]);
        if (allowed != nullptr && !allowed->contains(name))
            continue;
        std::string path;
        path.reserve(job.path.size() + 1 + name.size());
        if (job.path != "/")
            path += job.path;
        path += '/';
        path += name;
        if (m_state.admission.isExcluded(path))
            continue;
        m_newJobs.push_back({ std::move(path), child.node });
    }
}

// The jobs that this worker keeps are counted before they can be finished, because only it can finish them.
void ScanWorker::handOver()
{
    const auto kept = std::min(m_newJobs.size(), jobsKept);
    const auto keptJobs = std::span(m_newJobs).first(kept);
    std::ranges::move(keptJobs, std::back_inserter(m_ownJobs));
    m_state.queue.finishOne(m_newJobs.size(), std::span(m_newJobs).subspan(kept));
}

std::string_view ScanWorker::nameOf(const FileTree::Entry &entry) const
{
    return std::string_view(m_names).substr(
        static_cast<size_t>(entry.nameStart), static_cast<size_t>(entry.nameLength));
}

} // namespace Quillbrook
