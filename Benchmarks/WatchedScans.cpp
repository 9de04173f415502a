#include "WatchedScans.h"

#include "Core/AppModel.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <utility>

namespace Quillbrook::Benchmarks {

namespace {

using namespace std::chrono_literals;

constexpr auto longestRun = 120s;
// For what a finished scan still sets off, and a window's first frames.
constexpr auto settling = 500ms;

} // namespace

WatchedScans::WatchedScans(AppModel &model, QList<Pane> panes)
    : m_model(model)
    , m_panes(std::move(panes))
{
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, [this] {
        if (m_model.scans().phase().kind != Phase::Kind::scanning)
            QTimer::singleShot(settling, this, &WatchedScans::goOn);
    });
}

int WatchedScans::run()
{
    QTimer::singleShot(longestRun, this, [] { QCoreApplication::exit(1); });
    // A window starts a scan by itself, which then comes first.
    QTimer::singleShot(settling, this, [this] {
        if (m_model.scans().phase().kind == Phase::Kind::idle)
            goOn();
    });
    return QCoreApplication::exec();
}

void WatchedScans::goOn()
{
    if (m_model.scans().phase().kind == Phase::Kind::scanning)
        return;
    if (m_next == m_panes.size()) {
        m_monitor.stop();
        QCoreApplication::exit(0);
        return;
    }
    if (m_next == 0)
        m_monitor.start();
    m_model.navigation().setRequestedPane(m_panes[m_next++]);
    m_model.scans().scan({ .scope = Scope::complete });
}

QJsonObject WatchedScans::figures() const
{
    return { { "longest_wait", m_monitor.longestWait() }, { "longest_busy", m_monitor.longestBusy() },
        { "beats", m_monitor.beats() } };
}

} // namespace Quillbrook::Benchmarks
