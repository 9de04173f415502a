#pragma once

// Reads folders for one worker of a scan.

#include "Platform/DirectoryReader.h"
#include "Platform/Linux/Folders/LinuxDirectorySession.h"
#include "Platform/Linux/Folders/OpenFolders.h"

#include <vector>

struct dirent64;

namespace Quillbrook {

class LinuxDirectoryReader final : public DirectoryReader
{
public:
    /// `session` outlives the reader.
    explicit LinuxDirectoryReader(const LinuxDirectorySession &session);

    [[nodiscard]] bool open(const std::string &path, bool isRoot) override;
    [[nodiscard]] std::span<const DirectoryRecord> next() override;
    /// Keeps the folder open for its children to be opened from, until others need its place.
    void close() override;

private:
    void addRecord(const dirent64 &entry);
    [[nodiscard]] bool isMountedOver(DirectoryRecord &record, unsigned char kind) const;
    [[nodiscard]] bool askFile(DirectoryRecord &record, const char *name) const;

    const LinuxDirectorySession &m_session;
    OpenFolders m_folders;
    int m_folder = -1;
    const LinuxDirectorySession::MountsInFolder *m_mounts = nullptr;
    std::uint64_t m_rootMount = 0;
    std::unique_ptr<char[]> m_buffer;
    std::vector<DirectoryRecord> m_records;
};

} // namespace Quillbrook
