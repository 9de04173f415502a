#pragma once

// Finds the shots of a range in folders. Reads names and what the system says about files, and opens none.
// Any thread; blocks on the disk. One object serves one walk.

#include "Photos/CameraName.h"
#include "Photos/Linux/LinuxPhotoAssets.h"
#include "Photos/PhotoFileName.h"

#include <functional>
#include <set>
#include <span>

namespace Quillbrook {

class EntryBatch;

class PhotoWalk
{
public:
    /// A folder to look in, absolute, without links on the way, with those shots in it and below that are of
    /// `kinds`.
    struct Root
    {
        std::string path{};
        std::vector<PhotoKind> kinds{ PhotoKind::image, PhotoKind::video };
        /// Folders below it that another root is about.
        std::set<std::string> without{};
    };

    /// Whether the file at `path` has to stay. Asked of one file a folder, which speaks for all pictures in
    /// it: what keeps a picture is where it lies.
    using Keeps = std::function<bool(const std::string &path)>;

    PhotoWalk(PhotoQuery query, Keeps keeps, PhotoWork &work);

    /// Goes over one root; false when it was stopped.
    [[nodiscard]] bool walk(const Root &root);
    /// All that was found, by when it was made. Ends the walk.
    [[nodiscard]] std::shared_ptr<const LinuxPhotoAssets> take();

private:
    struct Seen;

    void readFolder(int folder, const std::string &path, EntryBatch &batch, const Root &root);
    void takeShots(int folder, std::vector<Seen> &seen, const Root &root);
    void takeShotsOfStem(int folder, std::span<Seen> files, const Root &root);
    void addShot(std::span<const Seen> files, const Root &root);
    [[nodiscard]] bool isWanted(PhotoKind kind, const Root &root) const;
    [[nodiscard]] bool isInRange(qint64 made) const;

    const PhotoQuery m_query;
    /// Whole seconds since 1970.
    const qint64 m_from;
    const qint64 m_to;
    const Keeps m_keeps;
    PhotoWork &m_work;
    MomentClock m_clock;
    std::vector<std::string> m_open;
    std::vector<std::string> m_folders;
    std::vector<PhotoShot> m_shots;
};

} // namespace Quillbrook
