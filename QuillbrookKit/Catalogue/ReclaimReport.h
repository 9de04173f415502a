#pragma once

// The outcome of one evaluation of the catalogue. A plain value, copied freely between threads.

#include "Catalogue/Finding.h"

#include <QList>

namespace Quillbrook {

struct ReclaimReport
{
    /// Largest first; equal sizes in the order of the tables.
    QList<Finding> findings{};
    /// Of the volume that holds the home folder; 0 when unknown.
    qint64 volumeFreeBytes = 0;
    qint64 volumeTotalBytes = 0;

    bool operator==(const ReclaimReport &) const = default;

    /// The findings that are old enough, in order, whatever their class.
    [[nodiscard]] QList<Finding> deletable() const;
    /// The bytes of the deletable findings of one class. Findings that are links never count.
    [[nodiscard]] qint64 bytes(Safety safety) const;
    /// What may be cleared at all: the bytes of `safe` and `careful`.
    [[nodiscard]] qint64 actionableBytes() const;
};

} // namespace Quillbrook
