pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A share of something as a filled line: how far a task has come, or how full a disk is.
T.ProgressBar {
    id: root

    property color tone: Theme.accent

    implicitHeight: Metrics.progressBarHeight
    implicitWidth: Metrics.columnWidth

    background: Rectangle {
        color: Theme.hairline
        radius: height / 2
    }
    contentItem: Item {
        Rectangle {
            color: root.tone
            height: parent.height
            radius: height / 2
            visible: root.position > 0
            width: Math.max(height, parent.width * root.position)

            Behavior on width {
                NumberAnimation {
                    duration: Metrics.sheetMotion
                    easing.type: Easing.OutQuad
                }
            }
        }
    }
}
