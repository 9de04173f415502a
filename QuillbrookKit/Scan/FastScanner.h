#pragma once

// Measures a folder tree and hands back a finished `FileTree`. It lists folders only: no file is ever opened.
// Sizes are allocated sizes. One scanner serves one scan at a time; `progress` and `cancel` may be called
// from any thread while `scan` runs on another.

#include "Scan/FileTree.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <memory>
#include <stop_token>
#include <string>

namespace Quillbrook {

class DirectoryReading;
class Processors;
struct ScanState;

class FastScanner
{
public:
    /// Absolute parent path to the names of the child folders that may be entered there.
    using Allowlist = QHash<QString, QSet<QString>>;

    struct Request
    {
        /// Raw bytes; absolute; standardised ("~", ".", "..", doubled and trailing slashes) unless it is "/".
        std::string rootPath{};
        /// Worker threads, clamped to 1 to 32.
        int threads = 1;
        /// Absolute folder paths, as text, that are listed but never entered; not applied to the root.
        QSet<QString> exclusions{};
        /// Empty: no restriction. A parent that is not a key is unrestricted.
        Allowlist allowlist{};
        bool crossDevices = false;
        /// How many entries there is room for from the start.
        qsizetype expectedNodes = 1'048'576;
        /// What a leading "~" of `rootPath` stands for, in raw bytes.
        std::string home{};
        /// A stop requested here ends the scan like `cancel`, and one requested before the scan began is
        /// obeyed as well: nothing is read then.
        std::stop_token stop{};
    };

    struct Progress
    {
        qsizetype filesSeen = 0;
        qint64 bytesSeen = 0;
        qsizetype directoriesQueued = 0;

        bool operator==(const Progress &) const = default;
    };

    struct Result
    {
        std::shared_ptr<const FileTree> tree{};
        qint32 root = FileTree::noNode;
        /// Seconds.
        double duration = 0;
        qsizetype unreadableDirectories = 0;
        /// Files whose size the system did not tell.
        qsizetype unmeasuredFiles = 0;
    };

    explicit FastScanner(DirectoryReading &directories);
    ~FastScanner();
    FastScanner(const FastScanner &) = delete;
    FastScanner &operator=(const FastScanner &) = delete;

    /// Runs a whole scan and returns when it has ended or was cancelled; a cancelled scan returns its partial
    /// tree, rolled up and sorted. Never fails: folders that can't be opened and files that can't be asked
    /// for their size are marked in the tree and counted. Nothing marks that a folder's entries could be read
    /// in part only, or that an entry went before it was asked and is left out.
    [[nodiscard]] Result scan(const Request &request);
    /// May be read at any time; between scans it tells of the last one.
    [[nodiscard]] Progress progress() const;
    /// Asks the running scan to stop; folders being read are still finished. Without one it does nothing that
    /// lasts: the next scan starts uncancelled. Whoever can't know whether the scan has begun uses the
    /// request's `stop`.
    void cancel();

    /// Volumes of the system and pseudo file systems that no scan enters.
    [[nodiscard]] static QSet<QString> defaultExclusions();
    /// Which folders below the home folder a quiet scan may enter.
    [[nodiscard]] static Allowlist quietAllowlist(const QString &home);
    /// Folders whose opening makes a privacy layer ask the user; a quiet scan stays out of them.
    [[nodiscard]] static QSet<QString> tccProtectedPaths(const QString &home);
    /// Performance cores, else half of all processors, at least 1.
    [[nodiscard]] static int defaultThreadCount(const Processors &processors);

private:
    DirectoryReading &m_directories;
    std::unique_ptr<ScanState> m_state;
};

} // namespace Quillbrook
