#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Platform/Clock.h"
#include "Platform/Notifier.h"
#include "Platform/UserDefaults.h"
#include "Scan/Format.h"

#include <QCoroFuture>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto updateCheckedAtKey = u"Quillbrook.updateCheckedAt"_s;
constexpr qint64 millisecondsBetweenUpdateChecks = qint64{ 86'400 } * 1000;

} // namespace

// With a notice on hand it is asked anew, so that the notice does not outlive what it tells of.
void AppModel::checkForUpdate()
{
    const auto checkedAt = m_services.kit.defaults.date(updateCheckedAtKey);
    if (checkedAt && checkedAt->msecsTo(m_services.kit.clock.now()) < millisecondsBetweenUpdateChecks
        && !m_update)
        return;
    askForUpdate();
}

// A question that failed counts as well: it is the day's one question, and clears a notice.
QCoro::Task<> AppModel::askForUpdate()
{
    const QPointer self(this);
    const auto version = m_services.version.isEmpty() ? u"0"_s : m_services.version;
    const auto asking = UpdateCheck::check(m_services.kit.http, version, m_services.updateFeed);
    const auto found = co_await asking;
    if (!self)
        co_return;
    m_services.kit.defaults.setDate(updateCheckedAtKey, m_services.kit.clock.now());
    if (std::exchange(m_update, found) != found)
        Q_EMIT updateChanged();
}

void AppModel::configureWatcher(Background &background)
{
    m_background = &background;
    m_watcher.setOnObservation(
        [this](const Watcher::Observation &observation) { takeObservation(observation); });
}

void AppModel::takeObservation(const Watcher::Observation &observation)
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

void AppModel::setWatching(bool watching)
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
