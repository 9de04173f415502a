#pragma once

// Assets that are files in folders. A query makes it once; nothing changes it afterwards.

#include "Photos/PhotoLibrary.h"

#include <cstdint>

namespace Quillbrook {

/// One file of an asset, with what it was when the query saw it.
struct PhotoFile
{
    /// Index of its folder.
    std::uint32_t folder = 0;
    std::string name{};
    std::uint64_t inode = 0;
    /// Nanoseconds since 1970; 0 where the file system keeps no birth times.
    qint64 born = 0;
    qint64 bytes = 0;
    bool isPlaceholder = false;

    bool operator==(const PhotoFile &) const = default;
};

/// Files of one shot, the largest first, because an estimate counts no more than the first that lies here.
struct PhotoShot
{
    PhotoKind kind = PhotoKind::image;
    /// Seconds since 1970.
    qint64 made = 0;
    std::vector<PhotoFile> files{};

    bool operator==(const PhotoShot &) const = default;
};

class LinuxPhotoAssets final : public PhotoAssets
{
public:
    /// `folders` are paths in raw bytes.
    LinuxPhotoAssets(std::vector<std::string> folders, std::vector<PhotoShot> shots)
        : m_folders(std::move(folders))
        , m_shots(std::move(shots))
    {
    }

    [[nodiscard]] qsizetype count() const override { return static_cast<qsizetype>(m_shots.size()); }
    /// A file that is another by now, or gone, has neither value.
    [[nodiscard]] std::vector<PhotoResource> resources(qsizetype index) const override;

    [[nodiscard]] const std::vector<PhotoShot> &shots() const { return m_shots; }
    [[nodiscard]] std::string path(const PhotoFile &file) const
    {
        return m_folders[file.folder] + '/' + file.name;
    }

private:
    std::vector<std::string> m_folders;
    std::vector<PhotoShot> m_shots;
};

} // namespace Quillbrook
