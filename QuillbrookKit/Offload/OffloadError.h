#pragma once

// Why something can't be moved to another volume, or brought back. A plain value.

#include <QString>

#include <cstdint>

namespace Quillbrook {

struct OffloadError
{
    enum class Kind : std::uint8_t {
        destinationUnusable,
        notEnoughRoom,
        hotPath,
        verificationFailed,
        failed,
        /// The person ended it.
        stopped,
    };

    Kind kind = Kind::failed;
    QString text{};
    /// Bytes, of `notEnoughRoom` alone.
    qint64 needed = 0;
    qint64 available = 0;

    bool operator==(const OffloadError &) const = default;

    /// A sentence for a person.
    [[nodiscard]] QString description() const;
};

} // namespace Quillbrook
