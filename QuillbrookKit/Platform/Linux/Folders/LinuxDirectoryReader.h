#pragma once

// Reads folders for one worker of a scan.

#include "Platform/DirectoryReader.h"
#include "Platform/Linux/Folders/EntryBatch.h"
#include "Platform/Linux/Folders/LinuxDirectorySession.h"
#include "Platform/Linux/Folders/OpenFolders.h"

#include <vector>

namespace Quillbrook {

class LinuxDirectoryReader final : public DirectoryReader
{
public:
    /// `session` outlives the reader.
    explicit LinuxDirectoryReader(const LinuxDirectorySession &session);

    [[nodiscard]] bool open(const std::string &path, OtherDevices others) override;
    [[nodiscard]] std::span<const DirectoryRecord> next() override;
    /// Keeps the folder open for its children to be opened from, until others need its place.
    void close() override;

private:
    void addRecord(const dirent64 &entry);
    [[nodiscard]] std::optional<std::uint64_t> mountOver(std::string_view name) const;
    [[nodiscard]] bool askFile(DirectoryRecord &record, const char *name) const;

    const LinuxDirectorySession &m_session;
    OpenFolders m_folders;
    int m_folder = -1;
    const LinuxDirectorySession::MountsInFolder *m_mounts = nullptr;
    OtherDevices m_others = OtherDevices::named;
    std::uint64_t m_rootMount = 0;
    EntryBatch m_batch;
    std::vector<DirectoryRecord> m_records;
};

} // namespace Quillbrook
