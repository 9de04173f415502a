#pragma once

// Everything the main window observes, made once for it: one state object for each part of it, so that a
// view gets what it needs and nothing more. Main thread only; what it is made from outlives it.

#include "Advisor/Advisor.h"
#include "Core/FolderAccess.h"
#include "Screens/Scanning/ScanningState.h"
#include "Screens/Warden/FreeNowState.h"
#include "Screens/Window/AskBarState.h"
#include "Screens/Window/ContentState.h"
#include "Screens/Window/GrantedFolderState.h"
#include "Screens/Window/PaneStates.h"
#include "Screens/Window/QuitState.h"
#include "Screens/Window/SidebarModel.h"
#include "Screens/Window/TopBarState.h"
#include "Screens/Window/UpdateLineState.h"
#include "Screens/Window/VolumeGaugeState.h"

#include <QObject>
#include <QVariantMap>
#include <QtQmlIntegration>

namespace Quillbrook {

class MotionPreference;

class MainWindowState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::ContentState *content READ content CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::SidebarModel *sidebar READ sidebar CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::TopBarState *topBar READ topBar CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::VolumeGaugeState *volumeGauge READ volumeGauge CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::GrantedFolderState *grantedFolder READ grantedFolder CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::UpdateLineState *updateLine READ updateLine CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::ScanningState *scanning READ scanning CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::AskBarState *askBar READ askBar CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::FreeNowState *freeNow READ freeNow CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::QuitState *quit READ quit CONSTANT FINAL)
    /// What the file that `content` names is made with.
    Q_PROPERTY(QVariantMap shownProperties READ shownProperties FINAL)
    /// The person has asked their desktop for less movement.
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged FINAL)

public:
    MainWindowState(
        AppModel &model, Background &background, MotionPreference &motion, QObject *parent = nullptr);

    /// The right to read the home folder, which the panel in the tray shares.
    [[nodiscard]] FolderAccess &access() { return m_access; }
    /// The conversation, which the screen and the question field share.
    [[nodiscard]] Advisor &advisor() { return m_advisor; }
    [[nodiscard]] ContentState *content() { return &m_content; }
    [[nodiscard]] SidebarModel *sidebar() { return &m_sidebar; }
    [[nodiscard]] TopBarState *topBar() { return &m_topBar; }
    [[nodiscard]] VolumeGaugeState *volumeGauge() { return &m_volumeGauge; }
    [[nodiscard]] GrantedFolderState *grantedFolder() { return &m_grantedFolder; }
    [[nodiscard]] UpdateLineState *updateLine() { return &m_updateLine; }
    [[nodiscard]] ScanningState *scanning() { return &m_scanning; }
    [[nodiscard]] AskBarState *askBar() { return &m_askBar; }
    [[nodiscard]] FreeNowState *freeNow() { return &m_freeNow; }
    [[nodiscard]] QuitState *quit() { return &m_quit; }
    [[nodiscard]] QVariantMap shownProperties();
    [[nodiscard]] bool reducedMotion() const;

    /// To be called when the person comes back to the window: the pane that is shown asks again for what
    /// other programs may have changed.
    Q_INVOKABLE void recheck();

Q_SIGNALS:
    void reducedMotionChanged();

private:
    void followOpen();
    void showPane();

    MotionPreference &m_motion;
    FolderAccess m_access;
    Advisor m_advisor;
    ContentState m_content;
    PaneStates m_panes;
    SidebarModel m_sidebar;
    TopBarState m_topBar;
    VolumeGaugeState m_volumeGauge;
    GrantedFolderState m_grantedFolder;
    UpdateLineState m_updateLine;
    ScanningState m_scanning;
    AskBarState m_askBar;
    FreeNowState m_freeNow;
    QuitState m_quit;
};

} // namespace Quillbrook
