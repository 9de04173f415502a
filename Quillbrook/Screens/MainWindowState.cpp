#include "Screens/MainWindowState.h"

#include "Core/AppModel.h"

namespace Quillbrook {

MainWindowState::MainWindowState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_content(model)
    , m_sidebar(m_content)
    , m_topBar(model)
    , m_volumeGauge(model)
    , m_scanning(model.scanProgress())
    , m_askBar(m_content)
{
}

} // namespace Quillbrook
