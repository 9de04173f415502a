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

/// Lets a file of `tree` have been changed last at `moment`.
inline void touchPicture(const TempTree &tree, const std::string &name, const QDateTime &moment)
{
    const timespec time{ .tv_sec = moment.toSecsSinceEpoch(), .tv_nsec = 0 };
    const std::array times{ time, time };
    if (::utimensat(AT_FDCWD, tree.path(name).c_str(), times.data(), 0) != 0)
        qFatal("no date for %s", name.c_str());
}

/// A file of `bytes` written bytes in `tree` that was last changed at `moment`.
inline void makePicture(
    const TempTree &tree, const std::string &name, const QDateTime &moment, qint64 bytes = 100)
{
    tree.file(name, bytes);
    touchPicture(tree, name, moment);
}

} // namespace Quillbrook
