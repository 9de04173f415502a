#pragma once

// Files of given names that were last changed at given moments.

#include "Support/TempTree.h"

#include <QDateTime>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace Quillbrook {

/// At noon, UTC.
inline QDateTime noon(int year, int month, int day)
{
    return { QDate(year, month, day), QTime(12, 0), Qt::UTC };
}

/// A file of `bytes` written bytes in `tree` that was last changed at `moment`.
inline void makePicture(
    const TempTree &tree, const std::string &name, const QDateTime &moment, qint64 bytes = 100)
{
    tree.file(name, bytes);
    const timespec time{ .tv_sec = moment.toSecsSinceEpoch(), .tv_nsec = 0 };
    const std::array times{ time, time };
    if (::utimensat(AT_FDCWD, tree.path(name).c_str(), times.data(), 0) != 0)
        qFatal("no date for %s", name.c_str());
}

} // namespace Quillbrook
