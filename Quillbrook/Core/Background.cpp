#include "Core/Background.h"

#include "Platform/AppServices.h"
#include "Platform/LoginItem.h"
#include "Platform/UserDefaults.h"

#include <QDebug>

#include <utility>

namespace Quillbrook {

namespace {

const auto notificationsWantedKey = QStringLiteral("Quillbrook.notificationsWanted");

} // namespace

Background::Background(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_notifier(services.notifier)
    , m_loginItem(services.loginItem)
    , m_defaults(services.kit.defaults)
    , m_notificationsWanted(m_defaults.boolean(notificationsWantedKey).value_or(true))
{
    refresh();
}

void Background::refresh()
{
    if (std::exchange(m_launchesAtLogin, m_loginItem.isEnabled()) != m_launchesAtLogin)
        Q_EMIT launchesAtLoginChanged();
    m_notifier.state().then(this, [this](NotificationState state) {
        if (std::exchange(m_notificationState, state) != state)
            Q_EMIT notificationStateChanged();
    });
}

void Background::setLaunchAtLogin(bool launches)
{
    if (launches && m_loginItem.isEnabled()) {
        refresh();
        return;
    }
    m_loginItem.setEnabled(launches).then(this, [this](const std::expected<void, QString> &outcome) {
        if (!outcome)
            qWarning("Quillbrook: login item change failed — %ls", qUtf16Printable(outcome.error()));
        refresh();
    });
}

void Background::setNotificationsWanted(bool wanted)
{
    if (m_notificationsWanted == wanted)
        return;
    m_notificationsWanted = wanted;
    m_defaults.setBoolean(notificationsWantedKey, wanted);
    Q_EMIT notificationsWantedChanged();
}

} // namespace Quillbrook
