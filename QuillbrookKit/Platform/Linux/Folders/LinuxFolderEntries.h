#pragma once

// Names by getdents64, which tells the kind of most entries along with them.

#include "Platform/FolderEntries.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/EntryBatch.h"
#include "Platform/Linux/Folders/OpenFolders.h"

namespace Quillbrook {

class LinuxFolderEntries final : public FolderEntries
{
public:
    explicit LinuxFolderEntries(const std::string &path);

    [[nodiscard]] Kind kind() const override { return m_kind; }
    [[nodiscard]] bool open(const std::string &path) override;
    [[nodiscard]] std::optional<std::string> place() const override;
    [[nodiscard]] std::optional<FolderEntry> next() override;

private:
    Kind m_kind;
    FileDescriptor m_root;
    OpenFolders m_folders;
    int m_folder = -1;
    EntryBatch m_batch{ 32768 };
};

} // namespace Quillbrook
