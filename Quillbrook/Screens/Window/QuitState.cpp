#include "Screens/Window/QuitState.h"

#include "Core/AppModel.h"

#include <utility>

namespace Quillbrook {

QuitState::QuitState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.offloads(), &OffloadDriver::runningChanged, this, [this] {
        if (!m_model.offloads().running())
            stay();
    });
}

bool QuitState::ask()
{
    if (!m_model.offloads().running())
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
