#include "Scan/ScanWorker.h"

#include "Fatal.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace Quillbrook {

namespace {

constexpr size_t entryRoom = 4096;
constexpr size_t nameRoom = 262144;
constexpr size_t childFolderRoom = 1024;
constexpr size_t ownJobRoom = 256;
constexpr size_t longestNames = std::numeric_limits<qint32>::max();
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
    while (takeJob()) {
        if (m_state.cancelled)
            m_state.queue.finishOne();
        else
            process();
    }
}

bool ScanWorker::takeJob()
{
    if (!m_ownJobs.empty()) {
        const auto &job = m_ownJobs.back();
        m_path.resize(job.parentLength);
        m_path += '/';
        m_path += job.name;
        m_node = job.node;
        m_ownJobs.pop_back();
        return true;
    }
    auto job = m_state.queue.take();
    if (!job)
        return false;
    m_path = std::move(job->path);
    m_node = job->node;
    return true;
}

void ScanWorker::process()
{
    m_entries.clear();
    m_names.clear();
    m_childFolders.clear();
    m_spilledJobs.clear();
    const bool opened = readFolder();
    addToTree(opened);
    const auto found = collectJobs();
    if (!opened)
        ++m_state.unreadable;
    m_state.queue.finishOne(found, m_spilledJobs);
}

bool ScanWorker::readFolder()
{
    if (!m_reader->open(m_path, m_state.staysOnOneDevice ? OtherDevices::named : OtherDevices::measured))
        return false;
    Totals totals;
    for (auto records = m_reader->next(); !records.empty(); records = m_reader->next()) {
        for (const auto &record : records)
            decode(record, totals);
    }
    m_state.filesSeen.fetch_add(totals.files, std::memory_order_relaxed);
    m_state.bytesSeen.fetch_add(totals.bytes, std::memory_order_relaxed);
    if (totals.unmeasured > 0)
        m_state.unmeasured.fetch_add(totals.unmeasured, std::memory_order_relaxed);
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
        if (!record.isMeasured) {
            flags |= unmeasured;
            totals.unmeasured += 1;
        }
        if (__builtin_add_overflow(totals.bytes, size, &totals.bytes))
            fatal("the sizes of a folder's files add up to more than 2^63 bytes");
    }
    const auto nameStart = m_names.size();
    if (nameStart + record.name.size() > longestNames)
        fatal("the names of a folder's entries are longer than 2^31 bytes");
    m_entries.append({ .size = size, .nameStart = static_cast<qint32>(nameStart), .flags = flags });
    std::ranges::copy(record.name, m_names.extend(record.name.size()));
}

// A file with several links counts on the first of them that any worker happens to read.
qint64 ScanWorker::countedSize(const DirectoryRecord &record)
{
    if (record.linkCount < 2 || record.fileId == 0)
        return record.allocatedSize;
    const std::scoped_lock lock(m_state.fileLock);
    return m_state.countedFiles.insert(record.fileDevice, record.fileId) ? record.allocatedSize : 0;
}

void ScanWorker::addToTree(bool opened)
{
    qint32 firstNode = FileTree::noNode;
    {
        const std::scoped_lock lock(m_state.treeLock);
        if (!opened)
            m_state.tree->setUnreadable(m_node);
        firstNode = m_state.tree->addNodes(m_node, m_entries, { m_names.data(), m_names.size() });
    }
    noteChildFolders(firstNode);
}

void ScanWorker::noteChildFolders(qint32 firstNode)
{
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (!isEntered(m_entries[i].flags))
            continue;
        const auto start = static_cast<size_t>(m_entries[i].nameStart);
        const auto end
            = i + 1 < m_entries.size() ? static_cast<size_t>(m_entries[i + 1].nameStart) : m_names.size();
        m_childFolders.push_back(
            { { m_names.data() + start, end - start }, firstNode + static_cast<qint32>(i) });
    }
}

// Keeps the first new jobs for this worker, puts the others aside for the queue and returns how many there
// are in all.
size_t ScanWorker::collectJobs()
{
    if (m_childFolders.empty())
        return 0;
    const auto *allowed = m_state.admission.namesAllowedIn(m_path);
    const auto parentLength = m_path == "/" ? 0 : m_path.size();
    size_t kept = 0;
    for (const auto &child : m_childFolders) {
        if (allowed != nullptr && !allowed->contains(child.name))
            continue;
        m_path.resize(parentLength);
        m_path += '/';
        m_path += child.name;
        if (m_state.admission.isExcluded(m_path))
            continue;
        if (kept < jobsKept) {
            m_ownJobs.push_back({ std::string(child.name), parentLength, child.node });
            ++kept;
        } else {
            m_spilledJobs.push_back({ m_path, child.node });
        }
    }
    return kept + m_spilledJobs.size();
}

} // namespace Quillbrook
