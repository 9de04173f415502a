#include "Screens/Warden/EarlierThings.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/HomeFolder.h"
#include "Removal/CappedSum.h"
#include "Scan/Format.h"
#include "Screens/Warden/WardenRows.h"

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
    const auto &books = m_model.books();
    const auto &kit = m_model.services().kit;
    std::vector<HeldItem> before;
    QList<WardenRow> rows;
    for (const auto &held : books.held()) {
        if (held.isOnlyInJournal || m_model.reclaims().justMoved().contains(held.item.id))
            continue;
        before.push_back(held);
        // What went last is what a person is most likely to want back.
        rows.prepend(WardenRows::heldRow(held, kit.home.homeDirectory(), kit.clock.now()));
        rows.first().ticked = !books.kept().contains(held.item.id);
    }
    if (!rows.isEmpty())
        rows.last().last = true;
    m_rows.setRows(rows);
    m_text = sentence(before);
    Q_EMIT changed();
}

QString EarlierThings::sentence(const std::vector<HeldItem> &before) const
{
    if (before.empty())
        return {};
    const auto &books = m_model.books();
    qsizetype count = 0;
    qint64 bytes = 0;
    for (const auto &held : before) {
        if (books.kept().contains(held.item.id))
            continue;
        ++count;
        bytes = cappedSum(bytes, held.item.bytes);
    }
    const auto size = Format::bytes(bytes);
    if (count == 0)
        return tr("What Quillbrook moved there before stays.");
    if (static_cast<qsizetype>(books.deletable().size()) > count)
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
    Q_EMIT changed();
}

void EarlierThings::hideRows()
{
    if (m_rowsShown)
        toggleRows();
}

} // namespace Quillbrook
