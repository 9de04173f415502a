#include "Core/WatchDriver.h"

#include "Core/Background.h"
#include "Platform/AppServices.h"
#include "Platform/Notifier.h"
#include "Scan/Format.h"

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

WatchDriver::WatchDriver(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
    , m_watcher(services.kit)
{
}

void WatchDriver::configureWatcher(Background &background)
{
    m_background = &background;
    m_watcher.setOnObservation(
        [this](const Watcher::Observation &observation) { takeObservation(observation); });
}

void WatchDriver::takeObservation(const Watcher::Observation &observation)
{
    if (std::exchange(m_lastWatch, observation) != observation)
        Q_EMIT lastWatchChanged();
    if (!observation.shouldNotify || !m_background || !m_background->notificationsWanted())
        return;
    auto body = observation.headline;
    if (observation.biggestGroup)
        body += u" · mostly "_s + *observation.biggestGroup;
    m_services.notifier.post(Format::bytes(observation.reclaimableBytes) + u" can be reclaimed"_s, body);
}

void WatchDriver::setWatching(bool watching)
{
    if (std::exchange(m_watching, watching) != watching)
        Q_EMIT watchingChanged();
    auto settings = m_watcher.settings();
    settings.enabled = watching;
    m_watcher.update(settings);
    if (!watching)
        return;
    // The desktop may answer otherwise now than when it was last asked.
    m_services.notifier.requestAuthorisation().then(this, [this] {
        if (m_background)
            m_background->refresh();
    });
    m_watcher.checkSoon();
}

} // namespace Quillbrook
