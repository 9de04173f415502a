#include "Screens/Window/MainWindowState.h"

#include "Core/AppModel.h"
#include "Platform/MotionPreference.h"

namespace Quillbrook {

MainWindowState::MainWindowState(
    AppModel &model, Background &background, MotionPreference &motion, QObject *parent)
    : QObject(parent)
    , m_motion(motion)
    , m_access(model.services())
    , m_content(model, m_access, background)
    , m_sidebar(m_content)
    , m_topBar(model)
    , m_volumeGauge(model)
    , m_grantedFolder(m_access, m_content)
    , m_updateLine(model)
    , m_warden(model)
    , m_crumbs(model)
    , m_map(model)
    , m_largest(model)
    , m_search(model)
    , m_selection(model)
    , m_scanning(model.scans().scanProgress())
    , m_askBar(m_content)
    , m_freeNow(model)
{
    connect(&m_motion, &MotionPreference::changed, this, &MainWindowState::reducedMotionChanged);
    connect(&m_content, &ContentState::paneChanged, this, &MainWindowState::followPane);
    followPane();
}

void MainWindowState::followPane()
{
    if (m_content.pane() == Pane::warden)
        m_warden.appear();
}

bool MainWindowState::reducedMotion() const
{
    return m_motion.isReduced();
}

} // namespace Quillbrook
