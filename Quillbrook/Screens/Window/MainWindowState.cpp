#include "Screens/Window/MainWindowState.h"

#include "Core/AppModel.h"
#include "Platform/MotionPreference.h"

#include <optional>

namespace Quillbrook {

using namespace Qt::StringLiterals;

MainWindowState::MainWindowState(
    AppModel &model, Background &background, MotionPreference &motion, QObject *parent)
    : QObject(parent)
    , m_motion(motion)
    , m_access(model.services())
    , m_advisor(model)
    , m_content(model, m_access, background)
    , m_panes(model, m_advisor)
    , m_sidebar(m_content)
    , m_topBar(model)
    , m_volumeGauge(model)
    , m_grantedFolder(m_access, m_content)
    , m_updateLine(model)
    , m_scanning(model.scans().scanProgress())
    , m_askBar(model, m_advisor, m_content)
    , m_freeNow(model)
    , m_quit(model)
{
    connect(&m_motion, &MotionPreference::changed, this, &MainWindowState::reducedMotionChanged);
    connect(&m_content, &ContentState::openChanged, this, &MainWindowState::followOpen);
    connect(&m_content, &ContentState::paneChanged, this, &MainWindowState::showPane);
    connect(&m_content, &ContentState::paneChosen, &m_panes, &PaneStates::offerKeyboard);
}

// Before anything else that the start sets going.
void MainWindowState::followOpen()
{
    if (m_content.isOpen())
        m_advisor.refreshAvailability();
    showPane();
}

void MainWindowState::showPane()
{
    m_panes.show(m_content.isOpen() ? std::optional(m_content.pane()) : std::nullopt);
}

QVariantMap MainWindowState::shownProperties()
{
    const auto &shown = m_content.shown();
    if (shown.file == ContentState::gateFile())
        return { { u"content"_s, QVariant::fromValue(&m_content) } };
    if (shown.file == ContentState::scanningFile())
        return { { u"scan"_s, QVariant::fromValue(&m_scanning) } };
    if (shown.file == ContentState::noticeFile())
        return { { u"title"_s, shown.title }, { u"message"_s, shown.message } };
    return m_panes.properties(m_content.pane());
}

void MainWindowState::recheck()
{
    m_panes.recheck();
}

bool MainWindowState::reducedMotion() const
{
    return m_motion.isReduced();
}

} // namespace Quillbrook
