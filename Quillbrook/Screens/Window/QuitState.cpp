#include "Screens/Window/QuitState.h"

#include "Core/AppModel.h"

#include <utility>

namespace Quillbrook {

QuitState::QuitState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.offloads(), &OffloadDriver::runningChanged, this, &QuitState::follow);
    connect(&m_model.removals(), &RemovalQueue::busyChanged, this, &QuitState::follow);
}

bool QuitState::isAboutDrives() const
{
    return m_model.offloads().running().has_value();
}

bool QuitState::isBusy() const
{
    return isAboutDrives() || m_model.removals().isBusy();
}

void QuitState::follow()
{
    if (!isBusy())
        stay();
    else if (m_asked)
        Q_EMIT changed();
}

bool QuitState::ask()
{
    if (!isBusy())
        return false;
    setAsked(true);
    return true;
}

void QuitState::stay()
{
    setAsked(false);
}

void QuitState::quit()
{
    setAsked(false);
    Q_EMIT quitChosen();
}

void QuitState::setAsked(bool asked)
{
    if (std::exchange(m_asked, asked) != asked)
        Q_EMIT changed();
}

} // namespace Quillbrook
