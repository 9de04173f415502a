#include "Screens/Warden/FreeNowState.h"

#include "Core/AppModel.h"
#include "Platform/Clock.h"
#include "Platform/HomeFolder.h"
#include "Scan/Format.h"
#include "Screens/Warden/WardenRows.h"

#include <utility>

namespace Quillbrook {

FreeNowState::FreeNowState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.reclaims(), &ReclaimDriver::freeNowOfferChanged, this, [this] {
        // Another move is another question.
        m_kept.clear();
        m_rowsShown = false;
        refresh();
    });
    connect(&m_model.reclaims(), &ReclaimDriver::ledgerChanged, this, &FreeNowState::refresh);
}

bool FreeNowState::asked() const
{
    return m_model.reclaims().freeNowOffer().has_value();
}

QString FreeNowState::title() const
{
    return asked() ? tr("Moved %1 to the Trash. Free the space now?")
                         .arg(Format::bytes(*m_model.reclaims().freeNowOffer()))
                   : QString();
}

QString FreeNowState::earlier() const
{
    const auto before = heldBefore();
    if (!asked() || before.empty())
        return {};
    qint64 bytes = 0;
    for (const auto &held : before)
        bytes += held.item.bytes;
    const auto count = Format::count(static_cast<qsizetype>(before.size()));
    return (before.size() == 1 ? tr("%1 item (%2) that Quillbrook moved there before goes too.")
                               : tr("%1 items (%2) that Quillbrook moved there before go too."))
        .arg(count, Format::bytes(bytes));
}

std::vector<HeldItem> FreeNowState::heldBefore() const
{
    std::vector<HeldItem> before;
    for (const auto &held : m_model.reclaims().held())
        if (!held.isOnlyInJournal && !m_model.reclaims().justMoved().contains(held.item.id))
            before.push_back(held);
    return before;
}

void FreeNowState::refresh()
{
    QList<WardenRow> rows;
    const auto &kit = m_model.services().kit;
    for (const auto &held : heldBefore()) {
        rows.prepend(WardenRows::heldRow(held, kit.home.homeDirectory(), kit.clock.now()));
        rows.first().ticked = !m_kept.contains(held.item.id);
    }
    if (!rows.isEmpty())
        rows.last().last = true;
    m_rows.setRows(rows);
    Q_EMIT changed();
}

void FreeNowState::toggle(int row)
{
    const auto *line = m_rows.at(row);
    if (!line)
        return;
    if (!m_kept.remove(line->id))
        m_kept.insert(line->id);
    refresh();
}

void FreeNowState::toggleRows()
{
    m_rowsShown = !m_rowsShown;
    Q_EMIT changed();
}

void FreeNowState::free()
{
    if (!asked())
        return;
    const auto kept = m_kept;
    m_model.reclaims().clearFreeNowOffer();
    m_model.reclaims().finishRemoving(kept);
}

void FreeNowState::keep()
{
    m_model.reclaims().clearFreeNowOffer();
}

} // namespace Quillbrook
