pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The main window.
Window {
    id: root

    required property MainWindowState screens

    color: Theme.page
    height: Metrics.windowHeight
    minimumHeight: Metrics.windowMinimumHeight
    minimumWidth: Metrics.windowMinimumWidth
    title: "Quillbrook"
    visible: true
    width: Metrics.windowWidth

    Binding {
        property: "reducedMotion"
        target: Metrics
        value: root.screens.reducedMotion
    }

    onActiveChanged: {
        if (active)
            screens.recheck();
    }

    ContentView {
        anchors.fill: parent
        screens: root.screens
    }

    FreeNowDialog {
        offer: root.screens.freeNow
    }

    QuitDialog {
        question: root.screens.quit
    }
}
