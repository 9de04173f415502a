#include "Core/Background.h"

#include "Platform/AppServices.h"
#include "Platform/LoginItem.h"
#include "Platform/UserDefaults.h"
#include "WhenAnswered.h"

#include <QDebug>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto notificationsWantedKey = u"Quillbrook.notificationsWanted"_s;

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
    const bool launches = m_loginItem.isEnabled();
    if (std::exchange(m_launchesAtLogin, launches) != launches)
        Q_EMIT launchesAtLoginChanged();
    // An answer that was overtaken by a later question's is out of date.
    whenAnswered(m_notifier.state(), this, [this, question = ++m_lastQuestion](NotificationState state) {
        if (question == m_lastQuestion && std::exchange(m_notificationState, state) != state)
            Q_EMIT notificationStateChanged();
    });
}

void Background::setLaunchAtLogin(bool launches)
{
    if (launches && m_loginItem.isEnabled()) {
        refresh();
        return;
    }
    using Outcome = std::expected<void, QString>;
    whenAnswered(m_loginItem.setEnabled(launches), this, [this, launches](const Outcome &outcome) {
        if (!outcome)
            qWarning("Quillbrook: login item change failed — %ls", qUtf16Printable(outcome.error()));
        const bool before = m_launchesAtLogin;
        refresh();
        // A switch that stands where it was asked to has to be set back, though nothing changed here.
        if (m_launchesAtLogin == before && m_launchesAtLogin != launches)
            Q_EMIT launchesAtLoginChanged();
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
