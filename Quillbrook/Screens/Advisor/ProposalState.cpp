#include "Screens/Advisor/ProposalState.h"

#include "Advisor/Advisor.h"
#include "Core/AppModel.h"
#include "Core/Translation.h"
#include "Platform/Clock.h"
#include "Scan/Format.h"
#include "Screens/SingleLine.h"

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

ProposalState::ProposalState(AppModel &model, Advisor &advisor, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_advisor(advisor)
{
    connect(&m_advisor, &Advisor::proposalChanged, this, &ProposalState::follow);
    connect(&m_model.reclaims(), &ReclaimDriver::safetyNetChanged, this, &ProposalState::confirmChanged);
}

void ProposalState::follow()
{
    m_asked.reset();
    const auto &proposal = m_advisor.proposal();
    m_items.setItems(proposal ? proposal->items : QList<StorageItem>(), m_model.services().kit.clock.now());
    Q_EMIT changed();
    Q_EMIT chosenChanged();
    Q_EMIT confirmChanged();
}

QString ProposalState::alsoConsiderLine(const std::optional<Finding> &finding)
{
    return finding ? tr("%1 — %2 more you could free")
                         .arg(translatedTableText(finding->rule.title), Format::bytes(finding->bytes))
                   : QString();
}

void ProposalState::askToClear(Advisor &advisor, const std::optional<Finding> &finding)
{
    if (finding)
        advisor.ask(tr("remove the %1").arg(translatedTableText(finding->rule.title)));
}

void ProposalState::choose(int row)
{
    m_items.choose(row);
    Q_EMIT chosenChanged();
}

int ProposalState::step(int row, int direction)
{
    const auto &items = m_items.items();
    for (auto next = row + direction; next >= 0 && next < items.size(); next += direction) {
        if (!items.at(next).removable)
            continue;
        choose(next);
        return next;
    }
    return row;
}

void ProposalState::askToMove()
{
    if (!canMove())
        return;
    m_asked = { .finding = m_advisor.proposal()->finding, .item = m_items.chosen() };
    Q_EMIT confirmChanged();
    Q_EMIT moveAsked();
}

void ProposalState::move()
{
    const auto asked = std::exchange(m_asked, {});
    if (!asked)
        return;
    if (asked->item)
        m_model.reclaims().removeItems({ *asked->item }, asked->finding);
    else
        m_model.reclaims().reclaim({ asked->finding }, false);
    m_advisor.dismissProposal();
}

void ProposalState::dismiss()
{
    m_advisor.dismissProposal();
}

void ProposalState::clearAlso()
{
    if (present())
        askToClear(m_advisor, m_advisor.proposal()->alsoConsider);
}

bool ProposalState::present() const
{
    return m_advisor.proposal().has_value();
}

QString ProposalState::heading() const
{
    if (!present())
        return {};
    const auto &proposal = *m_advisor.proposal();
    if (proposal.items.isEmpty())
        return tr("Remove %1?").arg(translatedTableText(proposal.finding.rule.title));
    return proposal.items.size() == 1 ? tr("This one?") : tr("Which one?");
}

QString ProposalState::summary() const
{
    if (!present())
        return {};
    const auto &finding = m_advisor.proposal()->finding;
    return tr("%1 · %2 in total").arg(translatedTableText(finding.rule.title), Format::bytes(finding.bytes));
}

QString ProposalState::consequence() const
{
    return present() && m_items.items().isEmpty()
        ? translatedTableText(m_advisor.proposal()->finding.rule.regenerates)
        : QString();
}

QString ProposalState::alsoConsider() const
{
    return present() ? alsoConsiderLine(m_advisor.proposal()->alsoConsider) : QString();
}

QString ProposalState::frees() const
{
    const auto chosen = m_items.chosen();
    return chosen ? tr("frees %1").arg(Format::bytes(chosen->bytes)) : QString();
}

bool ProposalState::canMove() const
{
    return present() && (m_items.items().isEmpty() || m_items.chosen());
}

QString ProposalState::confirmTitle() const
{
    if (!m_asked)
        return {};
    const auto name
        = m_asked->item ? singleLine(m_asked->item->name) : translatedTableText(m_asked->finding.rule.title);
    return tr("Move %1 to the Trash?").arg(name);
}

QString ProposalState::confirmMessage() const
{
    if (!m_asked)
        return {};
    const auto &net = m_model.reclaims().safetyNet();
    const auto comfort = net && net->isUnprotected()
        ? tr("You can put it back from the Trash. This Mac has no backup, so emptying the Trash is final.")
        : tr("You can put it back from the Trash.");
    return translatedTableText(m_asked->finding.rule.regenerates) + u"\n\n"_s + comfort;
}

} // namespace Quillbrook
