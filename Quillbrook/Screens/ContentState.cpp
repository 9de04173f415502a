#include "Screens/ContentState.h"

#include "Core/AppModel.h"
#include "Platform/HomeFolder.h"

namespace Quillbrook {

ContentState::ContentState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model, &AppModel::phaseChanged, this, &ContentState::refresh);
    connect(&m_model, &AppModel::requestedPaneChanged, this, &ContentState::followRequest);
    m_shown = shownFor(m_model.phase(), m_pane);
    followRequest();
}

void ContentState::appear()
{
    m_model.startRuleClock();
    if (m_didStart)
        return;
    m_didStart = true;
    m_model.refreshVolume();
    m_model.refreshSafetyNet();
    startScanning();
}

void ContentState::setPane(Pane pane)
{
    if (m_pane == pane)
        return;
    m_pane = pane;
    Q_EMIT paneChanged();
    refresh();
}

ContentState::Shown ContentState::shownFor(const Phase &phase, Pane pane)
{
    switch (phase.kind) {
    case Phase::Kind::scanning:
        return { .view = View::Scanning };
    case Phase::Kind::failed:
        return { .title = tr("Scan failed"), .message = phase.message };
    case Phase::Kind::idle:
        return { .title = tr("Nothing scanned yet"), .message = tr("Press Rescan to look at this Mac.") };
    case Phase::Kind::ready:
        break;
    }
    return shownForPane(pane);
}

ContentState::Shown ContentState::shownForPane(Pane pane)
{
    switch (pane) {
    case Pane::warden:
        return { .view = View::Warden };
    case Pane::map:
        return { .view = View::Map };
    case Pane::largest:
        return { .view = View::Largest };
    case Pane::search:
        return { .view = View::Search };
    case Pane::photos:
    case Pane::rules:
    case Pane::offload:
    case Pane::apps:
    case Pane::stats:
    case Pane::advisor:
        break;
    }
    return { .title = Quillbrook::title(pane), .message = tr("Not here yet.") };
}

void ContentState::refresh()
{
    auto shown = shownFor(m_model.phase(), m_pane);
    if (m_shown == shown)
        return;
    m_shown = std::move(shown);
    Q_EMIT viewChanged();
}

void ContentState::followRequest()
{
    const auto requested = m_model.requestedPane();
    if (!requested)
        return;
    setPane(*requested);
    // Later, not within the change itself: whoever set it still sees what it set.
    QMetaObject::invokeMethod(
        this, [this] { m_model.setRequestedPane(std::nullopt); }, Qt::QueuedConnection);
}

void ContentState::startScanning()
{
    m_model.setScanRoot(m_model.services().kit.home.realHomeDirectory());
    m_model.scan({ .scope = Scope::quiet, .automatic = true });
}

} // namespace Quillbrook
