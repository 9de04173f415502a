#include "Photos/Linux/LinuxPhotoAssets.h"

#include "Photos/Linux/PhotoStatus.h"

#include <fcntl.h>

namespace Quillbrook {

std::vector<PhotoResource> LinuxPhotoAssets::resources(qsizetype index) const
{
    std::vector<PhotoResource> resources;
    for (const auto &file : m_shots[static_cast<size_t>(index)].files) {
        const auto status = PhotoStatus::of(AT_FDCWD, path(file).c_str());
        if (status && status->inode == file.inode)
            resources.push_back({ .fileSize = status->bytes,
                .locallyAvailable = !file.isPlaceholder && !status->isElsewhere });
        else
            resources.emplace_back();
    }
    return resources;
}

} // namespace Quillbrook
