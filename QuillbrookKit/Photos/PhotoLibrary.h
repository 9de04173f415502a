#pragma once

// The pictures and videos of this user, as one library that is asked for a range of dates. Five operations:
// what it allows, asking for that, a query, what an asset is made of, and deleting. What stands behind them
// is the system's own matter.

#include <QDateTime>
#include <QFuture>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Quillbrook {

/// `limited` is enough to count and not enough to delete.
enum class PhotoAccess : std::uint8_t { notAsked, granted, limited, denied };

enum class PhotoKind : std::uint8_t { image = 1, video = 2 };

/// What a query asks for: assets of these kinds that were made from `from` to `to`, both inclusive.
struct PhotoQuery
{
    std::vector<PhotoKind> kinds{};
    QDateTime from{};
    QDateTime to{};

    bool operator==(const PhotoQuery &) const = default;

    /// Images always.
    [[nodiscard]] static PhotoQuery ofRange(const QDateTime &from, const QDateTime &to, bool includeVideos)
    {
        PhotoQuery query{ .kinds = { PhotoKind::image }, .from = from, .to = to };
        if (includeVideos)
            query.kinds.push_back(PhotoKind::video);
        return query;
    }
};

/// One file of an asset. A value that can't be read is absent.
struct PhotoResource
{
    std::optional<qint64> fileSize{};
    /// Whether its bytes lie on this machine.
    std::optional<bool> locallyAvailable{};

    bool operator==(const PhotoResource &) const = default;
};

/// What a query gave, in the order in which the assets were made. It never changes; any thread.
class PhotoAssets
{
public:
    virtual ~PhotoAssets() = default;
    [[nodiscard]] virtual qsizetype count() const = 0;
    /// Reads about one asset, which may block on the disk. REQUIRES: `index` is below `count`.
    [[nodiscard]] virtual std::vector<PhotoResource> resources(qsizetype index) const = 0;
};

/// How far a long operation is, in files, and whether it shall end early. Any thread.
struct PhotoWork
{
    std::atomic<qsizetype> done = 0;
    /// Of how many; 0 where that is not known before the end.
    std::atomic<qsizetype> total = 0;
    /// Of the files that are done, as far as it is known.
    std::atomic<qint64> bytes = 0;
    std::atomic<bool> isStopped = false;
    /// Told after each file that is moved, on the thread of the operation; set before that begins.
    std::function<void()> moved{};

    void advance(qint64 bytesOfFile)
    {
        ++done;
        bytes += bytesOfFile;
        if (moved)
            moved();
    }
};

/// What the library has to ask the person. Main thread only. Every question is answered once, with false
/// where whoever asked has gone.
class PhotoQuestions
{
public:
    virtual ~PhotoQuestions() = default;
    /// Whether the files in `folders` (paths for a person to read) may be read.
    [[nodiscard]] virtual QFuture<bool> mayRead(const QStringList &folders) = 0;
    /// Whether so many assets may go, right before they do.
    [[nodiscard]] virtual QFuture<bool> mayDelete(qsizetype count) = 0;
};

struct PhotoDeletion
{
    bool succeeded = false;
    /// What lies in the Trash although the whole failed, since it can't come back: one sentence each.
    QStringList stranded{};

    bool operator==(const PhotoDeletion &) const = default;
};

/// What came of putting back. Files, not assets.
struct PhotoReturn
{
    qsizetype returned = 0;
    /// Why each of the others stays in the Trash, a sentence each.
    QStringList stayed{};

    bool operator==(const PhotoReturn &) const = default;
};

/// What deletions took, in this run or an earlier one, and what can be put back now.
struct HeldPhotos
{
    /// In files.
    qsizetype count = 0;
    /// Where one of them lies (raw bytes); absent when there is none.
    std::optional<std::string> place{};

    bool operator==(const HeldPhotos &) const = default;
};

class PhotoLibrary
{
public:
    virtual ~PhotoLibrary() = default;

    /// What is allowed now. Asks nobody; any thread; blocks on the disk.
    [[nodiscard]] virtual PhotoAccess status() const = 0;
    /// Asks the person once, and tells what is allowed then. Main thread.
    [[nodiscard]] virtual QFuture<PhotoAccess> requestAccess(PhotoQuestions &questions) = 0;
    /// Null when it was stopped. Any thread; blocks for as long as the disk takes.
    [[nodiscard]] virtual std::shared_ptr<const PhotoAssets> query(
        const PhotoQuery &query, PhotoWork &work) const = 0;
    /// Moves all files of all assets to where they can be put back from, or none; none where it is stopped.
    /// The person has been asked. Any thread; blocks on the disk. REQUIRES: `assets` come from this library's
    /// `query`.
    [[nodiscard]] virtual PhotoDeletion deleteAssets(const PhotoAssets &assets, PhotoWork &work) = 0;

    /// Any thread; blocks on the disk, and for as long as a deletion or a return runs.
    [[nodiscard]] virtual HeldPhotos held() const = 0;
    /// Puts all of that back where it was, until it is stopped. Nothing is replaced. Any thread; blocks on
    /// the disk.
    virtual PhotoReturn putBack(PhotoWork &work) = 0;
    /// After how many days this desktop deletes by itself what lies in the Trash; absent when it does not.
    /// Any thread; may take seconds.
    [[nodiscard]] virtual std::optional<int> daysInTrash() const = 0;
};

} // namespace Quillbrook
