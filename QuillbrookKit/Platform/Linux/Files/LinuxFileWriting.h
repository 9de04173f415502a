#pragma once

// Files are written beside their place, brought to the disk, and renamed over it.

#include "Platform/FileWriting.h"

namespace Quillbrook {

class SpaceReserve;

class LinuxFileWriting final : public FileWriting
{
public:
    /// `reserve` is given up for a second try when nothing is free, and kept again afterwards; it outlives
    /// this object. None: a full disk is an error.
    explicit LinuxFileWriting(SpaceReserve *reserve = nullptr);

    [[nodiscard]] std::expected<void, QString> replace(
        const std::string &path, QByteArrayView content) override;

private:
    SpaceReserve *m_reserve;
};

} // namespace Quillbrook
