#pragma once

// Everything the main window observes, made once for it: one state object for each part of it, so that a
// view gets what it needs and nothing more. Main thread only; what it is made from outlives it.

#include "Core/FolderAccess.h"
#include "Screens/Lists/LargestState.h"
#include "Screens/Lists/SearchState.h"
#include "Screens/Map/BreadcrumbModel.h"
#include "Screens/Map/MapState.h"
#include "Screens/Map/SelectionBarState.h"
#include "Screens/Scanning/ScanningState.h"
#include "Screens/Warden/FreeNowState.h"
#include "Screens/Warden/WardenState.h"
#include "Screens/Window/AskBarState.h"
#include "Screens/Window/ContentState.h"
#include "Screens/Window/GrantedFolderState.h"
#include "Screens/Window/SidebarModel.h"
#include "Screens/Window/TopBarState.h"
#include "Screens/Window/UpdateLineState.h"
#include "Screens/Window/VolumeGaugeState.h"

#include <QObject>
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
    Q_PROPERTY(Quillbrook::WardenState *warden READ warden CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::BreadcrumbModel *crumbs READ crumbs CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::MapState *map READ map CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::LargestState *largest READ largest CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::SearchState *search READ search CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::SelectionBarState *selection READ selection CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::ScanningState *scanning READ scanning CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::AskBarState *askBar READ askBar CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::FreeNowState *freeNow READ freeNow CONSTANT FINAL)
    /// The person has asked their desktop for less movement.
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged FINAL)

public:
    MainWindowState(
        AppModel &model, Background &background, MotionPreference &motion, QObject *parent = nullptr);

    /// The right to read the home folder, which the panel in the tray shares.
    [[nodiscard]] FolderAccess &access() { return m_access; }
    [[nodiscard]] ContentState *content() { return &m_content; }
    [[nodiscard]] SidebarModel *sidebar() { return &m_sidebar; }
    [[nodiscard]] TopBarState *topBar() { return &m_topBar; }
    [[nodiscard]] VolumeGaugeState *volumeGauge() { return &m_volumeGauge; }
    [[nodiscard]] GrantedFolderState *grantedFolder() { return &m_grantedFolder; }
    [[nodiscard]] UpdateLineState *updateLine() { return &m_updateLine; }
    [[nodiscard]] WardenState *warden() { return &m_warden; }
    [[nodiscard]] BreadcrumbModel *crumbs() { return &m_crumbs; }
    [[nodiscard]] MapState *map() { return &m_map; }
    [[nodiscard]] LargestState *largest() { return &m_largest; }
    [[nodiscard]] SearchState *search() { return &m_search; }
    [[nodiscard]] SelectionBarState *selection() { return &m_selection; }
    [[nodiscard]] ScanningState *scanning() { return &m_scanning; }
    [[nodiscard]] AskBarState *askBar() { return &m_askBar; }
    [[nodiscard]] FreeNowState *freeNow() { return &m_freeNow; }
    [[nodiscard]] bool reducedMotion() const;

Q_SIGNALS:
    void reducedMotionChanged();

private:
    void followPane();

    MotionPreference &m_motion;
    FolderAccess m_access;
    ContentState m_content;
    SidebarModel m_sidebar;
    TopBarState m_topBar;
    VolumeGaugeState m_volumeGauge;
    GrantedFolderState m_grantedFolder;
    UpdateLineState m_updateLine;
    WardenState m_warden;
    BreadcrumbModel m_crumbs;
    MapState m_map;
    LargestState m_largest;
    SearchState m_search;
    SelectionBarState m_selection;
    ScanningState m_scanning;
    AskBarState m_askBar;
    FreeNowState m_freeNow;
};

} // namespace Quillbrook
