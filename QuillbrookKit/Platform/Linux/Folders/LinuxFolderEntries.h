#pragma once

// Names by getdents64, which tells the kind of most entries along with them.

#include "Platform/FolderEntries.h"
#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/OpenFolders.h"

#include <array>
#include <cstddef>

namespace Quillbrook {

class LinuxFolderEntries final : public FolderEntries
{
public:
    explicit LinuxFolderEntries(const std::string &path);

    [[nodiscard]] Kind kind() const override { return m_kind; }
    [[nodiscard]] bool open(const std::string &path) override;
    [[nodiscard]] std::optional<FolderEntry> next() override;

private:
    Kind m_kind;
    FileDescriptor m_root;
    OpenFolders m_folders;
    int m_folder = -1;
    size_t m_filled = 0;
    size_t m_offset = 0;
    alignas(std::max_align_t) std::array<char, 32768> m_buffer;
};

} // namespace Quillbrook
