#include "Screens/Warden/HeldRows.h"

#include "Removal/Books.h"
#include "Screens/Warden/WardenRows.h"

#include <utility>

namespace Quillbrook {

WardenRow HeldRows::of(const HeldItem &held, const QString &home, const QDateTime &now)
{
    if (std::exchange(m_day, now.date()) != now.date())
        clear();
    auto &row = m_made[held.item.id];
    if (row.id.isEmpty())
        row = WardenRows::heldRow(held, home, now);
    return row;
}

} // namespace Quillbrook
