#pragma once

// Files are written beside their place, brought to the disk, and renamed over it; what is added goes
// straight to their end.

#include "Platform/FileWriting.h"

#include <functional>

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
    [[nodiscard]] std::expected<void, QString> append(
        const std::string &path, QByteArrayView content) override;

private:
    [[nodiscard]] std::expected<void, QString> withReserve(const std::function<int()> &attempt) const;

    SpaceReserve *m_reserve;
};

} // namespace Quillbrook
