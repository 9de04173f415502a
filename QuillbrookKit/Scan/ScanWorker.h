#pragma once

// One worker of a scan: reads folder after folder until nothing is left. All that it touches for every entry
// is its own; what it shares with the other workers is in `ScanState`.

#include "Platform/DirectoryReader.h"
#include "Scan/FileTree.h"
#include "Scan/FolderAdmission.h"
#include "Scan/HardLinkSet.h"
#include "Scan/JobQueue.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Quillbrook {

/// What the workers of one scan share. `treeLock`, `fileLock` and the queue's own lock are never held
/// together. The last three members are written before the workers start and only read by them.
struct ScanState
{
    std::mutex treeLock{};
    /// Guarded by `treeLock` while workers run.
    std::shared_ptr<FileTree> tree{};
    std::mutex fileLock{};
    /// Guarded by `fileLock`.
    HardLinkSet countedFiles{};
    JobQueue queue{};
    std::atomic<qsizetype> filesSeen = 0;
    std::atomic<qint64> bytesSeen = 0;
    std::atomic<qsizetype> unreadable = 0;
    std::atomic<bool> cancelled = false;
    FolderAdmission admission{};
    bool staysOnOneDevice = true;
    std::uint64_t rootDevice = 0;
};

class ScanWorker
{
public:
    ScanWorker(ScanState &state, std::unique_ptr<DirectoryReader> reader);

    /// Returns when the scan has nothing left for this worker.
    void run();

private:
    struct ChildFolder
    {
        size_t entry;
        qint32 node;
    };
    struct Totals
    {
        qsizetype files = 0;
        qint64 bytes = 0;
    };

    [[nodiscard]] std::optional<ScanJob> nextJob();
    void process(const ScanJob &job);
    [[nodiscard]] bool readFolder(const ScanJob &job);
    void decode(const DirectoryRecord &record, Totals &totals);
    [[nodiscard]] qint64 countedSize(const DirectoryRecord &record);
    void addToTree(const ScanJob &job, bool opened);
    void collectJobs(const ScanJob &job);
    void handOver();
    [[nodiscard]] std::string_view nameOf(const FileTree::Entry &entry) const;

    ScanState &m_state;
    std::unique_ptr<DirectoryReader> m_reader;
    std::vector<FileTree::Entry> m_entries;
    std::string m_names;
    std::vector<ChildFolder> m_childFolders;
    std::vector<ScanJob> m_ownJobs;
    std::vector<ScanJob> m_newJobs;
};

} // namespace Quillbrook
