#include "Screens/Window/ContentState.h"

#include "Core/Background.h"
#include "Core/FolderAccess.h"

namespace Quillbrook {

ContentState::ContentState(AppModel &model, FolderAccess &access, Background &background, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_access(access)
    , m_background(background)
{
    connect(&m_access, &FolderAccess::grantedChanged, this, &ContentState::refresh);
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, &ContentState::refresh);
    connect(&m_model.navigation(), &Navigation::requestedPaneChanged, this, &ContentState::followRequest);
    m_shown = presentlyShown();
    followRequest();
}

void ContentState::appear()
{
    m_model.startRuleClock();
    m_model.watch().configureWatcher(m_background);
    m_background.refresh();
    if (m_didStart)
        return;
    m_didStart = true;
    m_model.updates().checkForUpdate();
    m_model.volume().refreshVolume();
    m_model.reclaims().refreshSafetyNet();
    startScanning();
}

// Later, not within the press: the folder window has an event loop of its own, and whoever pressed by way of
// the accessibility tree would wait until it is closed.
void ContentState::chooseHomeFolder()
{
    const auto choose = [this] {
        m_access.request();
        if (m_access.granted())
            startScanning();
        // The automatic start is spent when a grant was given up before.
        if (m_access.granted() && m_model.scans().phase().kind != Phase::Kind::scanning)
            rescan();
    };
    QMetaObject::invokeMethod(this, choose, Qt::QueuedConnection);
}

void ContentState::rescan()
{
    m_model.scans().cancelScan();
    if (m_access.prepare(m_model))
        m_model.scans().scan({ .scope = std::nullopt, .automatic = false });
}

void ContentState::setPane(Pane pane)
{
    if (m_pane == pane)
        return;
    m_pane = pane;
    Q_EMIT paneChanged();
    refresh();
}

ContentState::Shown ContentState::shownFor(const Circumstances &circumstances)
{
    if (circumstances.isGated)
        return { .view = View::Gate };
    switch (circumstances.phase.kind) {
    case Phase::Kind::scanning:
        return { .view = View::Scanning };
    case Phase::Kind::failed:
        return { .title = tr("Scan failed"), .message = circumstances.phase.message };
    case Phase::Kind::idle:
        return { .title = tr("Nothing scanned yet"), .message = tr("Press Rescan to look at this Mac.") };
    case Phase::Kind::ready:
        break;
    }
    return shownForPane(circumstances.pane);
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

ContentState::Shown ContentState::presentlyShown() const
{
    return shownFor({ .isGated = m_access.isGated(), .phase = m_model.scans().phase(), .pane = m_pane });
}

void ContentState::refresh()
{
    auto shown = presentlyShown();
    if (m_shown == shown)
        return;
    m_shown = std::move(shown);
    Q_EMIT viewChanged();
}

void ContentState::followRequest()
{
    const auto requested = m_model.navigation().requestedPane();
    if (!requested)
        return;
    setPane(*requested);
    // Later, not within the change itself: whoever set it still sees what it set.
    QMetaObject::invokeMethod(
        this, [this] { m_model.navigation().setRequestedPane(std::nullopt); }, Qt::QueuedConnection);
}

void ContentState::startScanning()
{
    if (m_access.prepare(m_model))
        m_model.scans().scan({ .scope = Scope::quiet, .automatic = true });
}

} // namespace Quillbrook
