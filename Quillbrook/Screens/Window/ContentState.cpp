#include "Screens/Window/ContentState.h"

#include "Core/Background.h"
#include "Core/FolderAccess.h"

#include <utility>

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
    setOpen(true);
    m_model.start(m_background);
    if (!std::exchange(m_didStart, true))
        startScanning();
}

void ContentState::disappear()
{
    setOpen(false);
}

void ContentState::setOpen(bool isOpen)
{
    if (m_isOpen == isOpen)
        return;
    m_isOpen = isOpen;
    Q_EMIT openChanged();
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

void ContentState::choose(Pane pane)
{
    setPane(pane);
    Q_EMIT paneChosen();
}

ContentState::Shown ContentState::shownFor(const Circumstances &circumstances)
{
    if (circumstances.isGated)
        return { .file = gateFile() };
    switch (circumstances.phase.kind) {
    case Phase::Kind::scanning:
        return { .file = scanningFile() };
    case Phase::Kind::failed:
        return { .title = tr("Scan failed"), .message = circumstances.phase.message };
    case Phase::Kind::idle:
        return { .title = tr("Nothing scanned yet"), .message = tr("Press Rescan to look at this Mac.") };
    case Phase::Kind::ready:
        break;
    }
    const auto *file = row(circumstances.pane).file;
    if (*file == '\0')
        return { .title = Quillbrook::title(circumstances.pane), .message = tr("Not here yet.") };
    return { .file = QString::fromLatin1(file) };
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
    Q_EMIT shownChanged();
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
