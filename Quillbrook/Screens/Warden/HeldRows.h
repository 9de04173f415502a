#pragma once

// The rows of things in the Trash, for as long as a list of them is open. What has been made of a thing is
// kept: there may be a hundred thousand, and a tick changes one. Main thread only.

#include "Screens/Warden/WardenRow.h"

#include <QDate>
#include <QHash>

namespace Quillbrook {

struct HeldItem;

class HeldRows
{
public:
    /// A ticked row. How long ago the thing went is told as of the first time on that day.
    [[nodiscard]] WardenRow of(const HeldItem &held, const QString &home, const QDateTime &now);
    /// For when the list is closed.
    void clear() { m_made.clear(); }

private:
    QHash<QString, WardenRow> m_made;
    QDate m_day;
};

} // namespace Quillbrook
