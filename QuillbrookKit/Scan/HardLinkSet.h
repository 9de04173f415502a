#pragma once

// Remembers which multiply linked files a scan has counted, so that each counts once. A file is named by its
// device and its id there, as ids repeat across devices. Not thread-safe; the scan guards it.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Quillbrook {

class HardLinkSet
{
public:
    /// Whether this is the first call for this file. REQUIRES: `fileId` is not 0.
    [[nodiscard]] bool insert(std::uint64_t device, std::uint64_t fileId);
    void clear();

private:
    struct File
    {
        std::uint64_t device = 0;
        // 0 marks a free slot.
        std::uint64_t fileId = 0;
    };

    [[nodiscard]] File &slot(std::uint64_t device, std::uint64_t fileId);
    void grow();

    // Open addressing, at most half full; the length is a power of two, or 0 as long as there is no file.
    std::vector<File> m_slots;
    std::size_t m_count = 0;
};

} // namespace Quillbrook
