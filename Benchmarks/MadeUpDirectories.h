#pragma once

// Folders that are on no disk: a directory reader that makes entries up, so that a scan of any size can be
// measured in memory. Folder n holds the folders 8n+1 to 8n+8 as far as they are wanted, and an equal share
// of the files; sizes and the lengths of names vary with the number of the entry. Making an entry up costs
// little and the same everywhere, so what a scan takes longer on a larger tree is the scan's.

#include "Platform/DirectoryReader.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Quillbrook::Benchmarks {

class MadeUpDirectories : public DirectoryReading
{
public:
    /// A tree of exactly `files` files, with a folder for every 24 of them.
    explicit MadeUpDirectories(std::uint64_t files);

    [[nodiscard]] std::unique_ptr<DirectorySession> session(const std::string &rootPath) override;

private:
    std::uint64_t m_files;
};

} // namespace Quillbrook::Benchmarks
