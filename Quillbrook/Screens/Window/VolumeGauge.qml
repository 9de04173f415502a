pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// How much of the disk is free, large, and how full it is.
ColumnLayout {
    id: root

    required property VolumeGaugeState gauge

    readonly property color barTone: gauge.isDanger ? Theme.danger : Theme.accent
    readonly property color figureTone: gauge.isDanger ? Theme.danger : Theme.strong

    spacing: 0

    Row {
        spacing: Metrics.space4

        FigureText {
            id: figure

            color: root.figureTone
            text: root.gauge.freeText
        }

        BodyText {
            anchors.baseline: figure.baseline
            color: Theme.label
            text: qsTr("free")
        }
    }

    ProgressLine {
        Accessible.ignored: true
        Layout.bottomMargin: Metrics.space4
        Layout.fillWidth: true
        Layout.topMargin: Metrics.space8
        implicitHeight: Metrics.gaugeBarHeight
        objectName: "usedBar"
        tone: root.barTone
        value: root.gauge.usedShare
    }

    CaptionText {
        Layout.fillWidth: true
        text: root.gauge.usedText
    }

    BodyText {
        Layout.fillWidth: true
        Layout.topMargin: Metrics.space8
        color: Theme.label
        font.pointSize: Metrics.tinyFont
        objectName: "gapNote"
        text: root.gauge.note
        visible: text !== ""
        wrapMode: Text.Wrap
    }
}
