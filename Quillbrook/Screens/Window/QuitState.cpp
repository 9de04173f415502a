#include "Screens/Window/QuitState.h"

#include "Core/AppModel.h"

#include <utility>

namespace Quillbrook {

QuitState::QuitState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.removals(), &RemovalQueue::turnChanged, this, &QuitState::follow);
}

bool QuitState::isAboutDrives() const
{
    return m_model.removals().isCopying();
}

void QuitState::follow()
{
    if (!m_model.removals().isBusy())
        stay();
    else if (m_asked)
        Q_EMIT changed();
}

bool QuitState::ask()
{
    if (!m_model.removals().isBusy())
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
