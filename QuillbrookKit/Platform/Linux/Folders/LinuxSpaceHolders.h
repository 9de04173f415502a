#pragma once

// Who holds removed space on Linux: further names of files, files that the user's processes have open, and
// the snapshots of btrfs and ZFS where they show as folders.

#include "Platform/SpaceHolders.h"

#include <functional>

namespace Quillbrook {

class LinuxSpaceHolders final : public SpaceHolders
{
public:
    struct Places
    {
        /// Where the system shows its processes.
        std::string processes = "/proc";
        /// Whether the folder at a path is the top of a snapshot.
        std::function<bool(const std::string &path)> isSnapshot{};
    };

    /// Those of this machine.
    LinuxSpaceHolders();
    explicit LinuxSpaceHolders(Places places);

    [[nodiscard]] std::unique_ptr<LinkedFiles> linkedFiles(
        const std::vector<std::string> &paths) const override;
    [[nodiscard]] std::vector<OpenFiles> openFiles(const std::vector<std::string> &paths) const override;
    [[nodiscard]] std::vector<QString> snapshots(const std::vector<std::string> &paths) const override;
    [[nodiscard]] bool countsExactly(const std::string &path) const override;

private:
    const Places m_places;
};

} // namespace Quillbrook
