#include "Screens/Warden/EarlierThings.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/HomeFolder.h"
#include "Removal/CappedSum.h"
#include "Scan/Format.h"
#include "Screens/Warden/WardenRows.h"

#include <ranges>

namespace Quillbrook {

EarlierThings::EarlierThings(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.books(), &RemovalBooks::changed, this, &EarlierThings::refresh);
    connect(&m_model.reclaims(), &ReclaimDriver::freeNowOfferChanged, this, &EarlierThings::refresh);
    refresh();
}

void EarlierThings::refresh()
{
    if (!m_rowsShown)
        m_made.clear();
    m_rows.setRows(m_rowsShown ? presentRows() : QList<WardenRow>());
    m_text = sentence();
    Q_EMIT changed();
}

bool EarlierThings::isEarlier(const HeldItem &held) const
{
    return !held.isOnlyInJournal && !m_model.reclaims().justMoved().contains(held.item.id);
}

// What went last is what a person is most likely to want back.
QList<WardenRow> EarlierThings::presentRows()
{
    const auto &books = m_model.books();
    const auto &kit = m_model.services().kit;
    const auto home = kit.home.homeDirectory();
    const auto now = kit.clock.now();
    QList<WardenRow> rows;
    for (const auto &held : books.held() | std::views::reverse) {
        if (!isEarlier(held))
            continue;
        rows.append(m_made.of(held, home, now));
        rows.last().ticked = !books.kept().contains(held.item.id);
    }
    if (!rows.isEmpty())
        rows.last().last = true;
    return rows;
}

QString EarlierThings::sentence() const
{
    const auto &books = m_model.books();
    bool isAnyEarlier = false;
    bool isAnyOther = false;
    qsizetype count = 0;
    qint64 bytes = 0;
    for (const auto &held : books.held()) {
        const bool isOfThese = isEarlier(held);
        isAnyEarlier |= isOfThese;
        if (!books.isDeletable(held))
            continue;
        isAnyOther |= !isOfThese;
        if (!isOfThese)
            continue;
        ++count;
        bytes = cappedSum(bytes, held.item.bytes);
    }
    if (!isAnyEarlier)
        return {};
    const auto size = Format::bytes(bytes);
    if (count == 0)
        return tr("What Quillbrook moved there before stays.");
    if (isAnyOther)
        return (count == 1 ? tr("%1 item (%2) that Quillbrook moved there before goes too.")
                           : tr("%1 items (%2) that Quillbrook moved there before go too."))
            .arg(Format::count(count), size);
    return (count == 1 ? tr("%1 item (%2) that Quillbrook moved there before goes.")
                       : tr("%1 items (%2) that Quillbrook moved there before go."))
        .arg(Format::count(count), size);
}

void EarlierThings::toggle(int row)
{
    if (const auto *line = m_rows.at(row))
        m_model.books().toggleKept(QString(line->id));
}

void EarlierThings::toggleRows()
{
    m_rowsShown = !m_rowsShown;
    refresh();
}

void EarlierThings::hideRows()
{
    if (m_rowsShown)
        toggleRows();
}

} // namespace Quillbrook
