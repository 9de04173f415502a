#include "Screens/Panel/MenuBarPanelState.h"

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Core/FolderAccess.h"
#include "Platform/Clock.h"
#include "Scan/Format.h"

#include <chrono>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

} // namespace

MenuBarPanelState::MenuBarPanelState(
    AppModel &model, Background &background, FolderAccess &access, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_background(background)
    , m_access(access)
{
    m_ageClock.setObjectName(u"ageClock"_s);
    m_ageClock.setParent(this);
    m_ageClock.setInterval(60s);
    connect(&m_ageClock, &QTimer::timeout, this, &MenuBarPanelState::changed);

    connect(&m_model.volume(), &VolumeFigures::menuBarTitleChanged, this, &MenuBarPanelState::changed);
    connect(&m_model.scans(), &ScanDriver::phaseChanged, this, &MenuBarPanelState::changed);
    connect(&m_model.scans(), &ScanDriver::reportChanged, this, &MenuBarPanelState::changed);
    connect(&m_model.watch(), &WatchDriver::watchingChanged, this, &MenuBarPanelState::changed);
    connect(&m_model.watch(), &WatchDriver::lastWatchChanged, this, &MenuBarPanelState::changed);
    connect(&m_background, &Background::launchesAtLoginChanged, this, &MenuBarPanelState::changed);
    connect(&m_background, &Background::notificationStateChanged, this, &MenuBarPanelState::changed);
    connect(&m_background, &Background::notificationsWantedChanged, this, &MenuBarPanelState::changed);
}

QString MenuBarPanelState::summaryOf(const std::optional<qint64> &reclaimable)
{
    if (!reclaimable)
        return tr("Not measured yet");
    return *reclaimable >= 1 ? tr("%1 can be reclaimed safely").arg(Format::bytes(*reclaimable))
                             : tr("Nothing safe left to reclaim");
}

void MenuBarPanelState::appear()
{
    m_model.volume().refreshVolume();
    // The person may come from the desktop's settings.
    m_background.refresh();
    if (!m_model.scans().report() && m_access.prepare(m_model))
        m_model.scans().scan({ .scope = Scope::quiet, .automatic = true });
    m_ageClock.start();
    Q_EMIT changed();
}

void MenuBarPanelState::disappear()
{
    m_ageClock.stop();
}

void MenuBarPanelState::setWatching(bool watching)
{
    m_model.watch().setWatching(watching);
    Q_EMIT changed();
}

void MenuBarPanelState::setNotificationsWanted(bool wanted)
{
    m_background.setNotificationsWanted(wanted);
    Q_EMIT changed();
}

void MenuBarPanelState::setLaunchAtLogin(bool launches)
{
    m_background.setLaunchAtLogin(launches);
    Q_EMIT changed();
}

void MenuBarPanelState::openSettings()
{
    m_model.services().notifier.openSettings();
}

void MenuBarPanelState::checkNow()
{
    m_model.watch().watcher().check(false);
}

void MenuBarPanelState::open()
{
    Q_EMIT openRequested();
}

void MenuBarPanelState::quit()
{
    Q_EMIT quitRequested();
}

std::optional<qint64> MenuBarPanelState::reclaimableNow() const
{
    if (const auto &watch = m_model.watch().lastWatch())
        return watch->reclaimableBytes;
    if (const auto &report = m_model.scans().report())
        return report->bytes(Safety::safe);
    return std::nullopt;
}

QString MenuBarPanelState::freeText() const
{
    return m_model.volume().menuBarTitle();
}

QString MenuBarPanelState::summary() const
{
    return isMeasuring() ? tr("Measuring…") : summaryOf(reclaimableNow());
}

bool MenuBarPanelState::isReclaimable() const
{
    return !isMeasuring() && reclaimableNow().value_or(0) >= 1;
}

bool MenuBarPanelState::watching() const
{
    return m_model.watch().watching();
}

QString MenuBarPanelState::watchingLine() const
{
    if (!watching())
        return tr("It checks every half hour and tells you before the disk fills up. It never removes "
                  "anything on its own, and it only runs while Quillbrook is in the menu bar.");
    const auto &watch = m_model.watch().lastWatch();
    if (!watch)
        return tr("Checking shortly…");
    return tr("Last checked %1 · checks every 30 minutes")
        .arg(Format::age(watch->checkedAt, m_model.services().kit.clock.now()));
}

bool MenuBarPanelState::notificationsWanted() const
{
    return m_background.notificationsWanted();
}

QString MenuBarPanelState::notificationsLine() const
{
    switch (m_background.notificationState()) {
    case NotificationState::notAsked:
        return tr("Quillbrook will ask permission the first time it needs to tell you something.");
    case NotificationState::allowed:
        return tr("Alerts are on.");
    case NotificationState::denied:
        return tr("Alerts are blocked in System Settings, so Quillbrook can only show the number in the menu "
                  "bar.");
    }
    return {};
}

bool MenuBarPanelState::isDenied() const
{
    return m_background.notificationState() == NotificationState::denied;
}

bool MenuBarPanelState::offersSettings() const
{
    return isDenied() && m_model.services().notifier.hasSettings();
}

QString MenuBarPanelState::settingsHint() const
{
    return isDenied() && !offersSettings()
        ? tr("Alerts can be allowed again where this desktop keeps its settings for notifications.")
        : QString();
}

bool MenuBarPanelState::launchesAtLogin() const
{
    return m_background.launchesAtLogin();
}

QString MenuBarPanelState::loginLine() const
{
    return launchesAtLogin() ? tr("Quillbrook starts with your Mac and sits in the menu bar.")
                             : tr("Without this, nothing watches after a restart.");
}

QString MenuBarPanelState::quitHelp() const
{
    return watching() ? tr("Quitting stops Quillbrook watching this Mac.") : tr("Quit Quillbrook.");
}

bool MenuBarPanelState::isMeasuring() const
{
    return m_model.scans().phase().kind == Phase::Kind::scanning;
}

} // namespace Quillbrook
