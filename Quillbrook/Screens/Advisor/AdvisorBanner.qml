pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Whether a model answers, which one, and that it does so on this machine. Its ground is a little lighter than the
// page, on which the green would be too faint to read.
Rectangle {
    id: root

    required property AdvisorState advisor

    readonly property color tone: advisor.isAvailable ? Theme.safe : Theme.careful

    color: Theme.faded(Theme.surface, Metrics.liftOpacity)
    implicitHeight: row.implicitHeight + 2 * Metrics.space16

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Metrics.paneInset
        anchors.right: parent.right
        anchors.rightMargin: Metrics.paneInset
        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.space8

        Symbol {
            color: root.tone
            name: root.advisor.isAvailable ? "lock.laptopcomputer" : "exclamationmark.triangle"
        }

        BodyText {
            Layout.fillWidth: true
            // A layout rounds down, and half a pixel too little would break the line.
            Layout.maximumWidth: Math.ceil(implicitWidth) + 1
            color: root.tone
            text: root.advisor.availability
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            Layout.minimumWidth: Math.min(Math.ceil(implicitWidth) + 1, Metrics.filterWidth)
            text: root.advisor.answerer
            visible: text !== ""
        }

        Item {
            Layout.fillWidth: true
            visible: root.advisor.answerer === ""
        }

        PushButton {
            text: qsTr("Clear")
            onClicked: root.advisor.clear()
        }
    }
}
