#include "Screens/Window/PaneStates.h"

#include "Core/AppModel.h"
#include "Screens/Advisor/AdvisorState.h"
#include "Screens/Apps/AppsState.h"
#include "Screens/Lists/LargestState.h"
#include "Screens/Lists/SearchState.h"
#include "Screens/Map/BreadcrumbModel.h"
#include "Screens/Map/MapState.h"
#include "Screens/Map/SelectionBarState.h"
#include "Screens/Offload/OffloadState.h"
#include "Screens/Photos/PhotosState.h"
#include "Screens/Rules/RulesState.h"
#include "Screens/Stats/StatsState.h"
#include "Screens/Warden/WardenState.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

PaneStates::PaneStates(AppModel &model, Advisor &advisor, QObject *parent)
    : QObject(parent)
{
    // One for all panes that have a selection: the model has only one.
    auto *bar = new SelectionBarState(model);
    bar->setParent(this);
    const QVariantMap selection{ { u"selection"_s, QVariant::fromValue(bar) } };
    auto withCrumbs = selection;
    withCrumbs.insert(u"crumbs"_s, QVariant::fromValue(new BreadcrumbModel(model, this)));

    add(Pane::warden, new WardenState(model, this));
    add(Pane::map, new MapState(model, this), withCrumbs);
    add(Pane::largest, new LargestState(model, this), selection);
    add(Pane::search, new SearchState(model, this), selection);
    add(Pane::rules, new RulesState(model, this));
    add(Pane::apps, new AppsState(model, this));
    add(Pane::offload, new OffloadState(model, this));
    add(Pane::advisor, new AdvisorState(model, advisor, this));

    const auto &services = model.services();
    const PhotosState::Services photos{ .library = services.photos,
        .revealer = services.revealer,
        .clock = services.kit.clock,
        .removals = &model.removals() };
    add(Pane::photos, new PhotosState(photos, this));
    add(Pane::stats, new StatsState(services.kit.counters, this));
}

void PaneStates::add(Pane pane, PaneState *state, const QVariantMap &others)
{
    auto properties = others;
    properties.insert(QString::fromLatin1(row(pane).state), QVariant::fromValue(state));
    m_entries[pane] = { .state = state, .properties = properties };
}

PaneState *PaneStates::state(Pane pane) const
{
    const auto found = m_entries.find(pane);
    return found == m_entries.end() ? nullptr : found->second.state;
}

PaneState *PaneStates::shownState() const
{
    return m_shown ? state(*m_shown) : nullptr;
}

QVariantMap PaneStates::properties(Pane pane) const
{
    const auto found = m_entries.find(pane);
    return found == m_entries.end() ? QVariantMap() : found->second.properties;
}

void PaneStates::show(const std::optional<Pane> &pane)
{
    if (m_shown == pane)
        return;
    if (auto *before = shownState())
        before->setShown(false);
    m_shown = pane;
    if (auto *now = shownState())
        now->setShown(true);
}

void PaneStates::recheck()
{
    if (auto *shown = shownState())
        shown->recheck();
}

void PaneStates::offerKeyboard()
{
    if (auto *shown = shownState())
        Q_EMIT shown->keyboardOffered();
}

} // namespace Quillbrook
