#pragma once

// What the readers of one scan share: the open root and the mount points below it.

#include "Platform/DirectoryReader.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/MountTable.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace Quillbrook {

class LinuxDirectorySession final : public DirectorySession
{
public:
    /// The mount points directly in one folder: name and mount id.
    using MountsInFolder = std::map<std::string, std::uint64_t, std::less<>>;

    /// `mounts` is absent where the system does not tell them; asked only while this is made.
    LinuxDirectorySession(const std::string &rootPath, const std::optional<std::vector<Mount>> &mounts);

    [[nodiscard]] std::optional<std::uint64_t> rootDevice() const override { return m_rootMount; }
    [[nodiscard]] std::unique_ptr<DirectoryReader> makeReader() override;

    [[nodiscard]] const std::string &rootPath() const { return m_rootPath; }
    /// -1 when the root can't be opened.
    [[nodiscard]] int rootDescriptor() const { return m_root.number(); }
    /// Null when nothing is mounted directly in the folder at `path`.
    [[nodiscard]] const MountsInFolder *mountsIn(const std::string &path) const;
    /// Whether all mount points below the root are known; if not, every folder has to be asked.
    [[nodiscard]] bool knowsMounts() const { return m_knowsMounts; }

private:
    void learnMounts(const std::vector<Mount> &mounts, const std::string &realRoot);

    std::string m_rootPath;
    FileDescriptor m_root;
    std::optional<std::uint64_t> m_rootMount;
    std::unordered_map<std::string, MountsInFolder> m_mounts;
    size_t m_longestParent = 0;
    bool m_knowsMounts = false;
};

} // namespace Quillbrook
