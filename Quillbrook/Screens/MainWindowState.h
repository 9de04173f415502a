#pragma once

// Everything the main window observes, made once for it: one state object for each part of it, so that a
// view gets what it needs and nothing more. Main thread only; what it is made from outlives it.

#include "Screens/AskBarState.h"
#include "Screens/ContentState.h"
#include "Screens/ScanningState.h"
#include "Screens/SidebarModel.h"
#include "Screens/TopBarState.h"
#include "Screens/VolumeGaugeState.h"

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
    Q_PROPERTY(Quillbrook::ScanningState *scanning READ scanning CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::AskBarState *askBar READ askBar CONSTANT FINAL)
    /// The person has asked their desktop for less movement.
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged FINAL)

public:
    MainWindowState(AppModel &model, MotionPreference &motion, QObject *parent = nullptr);

    [[nodiscard]] ContentState *content() { return &m_content; }
    [[nodiscard]] SidebarModel *sidebar() { return &m_sidebar; }
    [[nodiscard]] TopBarState *topBar() { return &m_topBar; }
    [[nodiscard]] VolumeGaugeState *volumeGauge() { return &m_volumeGauge; }
    [[nodiscard]] ScanningState *scanning() { return &m_scanning; }
    [[nodiscard]] AskBarState *askBar() { return &m_askBar; }
    [[nodiscard]] bool reducedMotion() const;

Q_SIGNALS:
    void reducedMotionChanged();

private:
    MotionPreference &m_motion;
    ContentState m_content;
    SidebarModel m_sidebar;
    TopBarState m_topBar;
    VolumeGaugeState m_volumeGauge;
    ScanningState m_scanning;
    AskBarState m_askBar;
};

} // namespace Quillbrook
