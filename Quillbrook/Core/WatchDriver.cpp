#include "Core/WatchDriver.h"

#include "Core/Background.h"
#include "Core/Translation.h"
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
    const auto body = observation.biggestGroup
        ? tr("%1 · mostly %2").arg(observation.headline, translatedTableText(*observation.biggestGroup))
        : observation.headline;
    m_services.notifier.post(
        tr("%1 can be reclaimed").arg(Format::bytes(observation.reclaimableBytes)), body);
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
