#pragma once

// One worker of a scan: reads folder after folder until nothing is left. All that it touches for every entry
// is its own; what it shares with the other workers is in `ScanState`.

#include "Platform/DirectoryReader.h"
#include "Scan/FileTree.h"
#include "Scan/FolderAdmission.h"
#include "Scan/HardLinkSet.h"
#include "Scan/JobQueue.h"
#include "Scan/UnfairLock.h"

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
    UnfairLock treeLock{};
    /// Guarded by `treeLock` while workers run.
    std::shared_ptr<FileTree> tree{};
    UnfairLock fileLock{};
    /// Guarded by `fileLock`.
    HardLinkSet countedFiles{};
    JobQueue queue{};
    std::atomic<qsizetype> filesSeen = 0;
    std::atomic<qint64> bytesSeen = 0;
    std::atomic<qsizetype> unreadable = 0;
    std::atomic<qsizetype> unmeasured = 0;
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
        std::string_view name;
        qint32 node;
    };
    // A folder that stays with this worker. Its parent's path is still the beginning of `m_path` when its
    // turn comes, because nothing but what lies below that parent is read before it.
    struct OwnJob
    {
        std::string name;
        size_t parentLength;
        qint32 node;
    };
    struct Totals
    {
        qsizetype files = 0;
        qint64 bytes = 0;
        qsizetype unmeasured = 0;
    };

    [[nodiscard]] bool takeJob();
    void process();
    [[nodiscard]] bool readFolder();
    void decode(const DirectoryRecord &record, Totals &totals);
    [[nodiscard]] qint64 countedSize(const DirectoryRecord &record);
    void addToTree(bool opened);
    void noteChildFolders(qint32 firstNode);
    [[nodiscard]] size_t collectJobs();

    ScanState &m_state;
    std::unique_ptr<DirectoryReader> m_reader;
    // The folder that is being read.
    std::string m_path;
    qint32 m_node = FileTree::noNode;
    GrowingArray<FileTree::Entry> m_entries;
    GrowingArray<char> m_names;
    std::vector<ChildFolder> m_childFolders;
    std::vector<OwnJob> m_ownJobs;
    std::vector<FolderJob> m_spilledJobs;
};

} // namespace Quillbrook
