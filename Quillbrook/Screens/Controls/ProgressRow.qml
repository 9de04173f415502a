pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A row of a card about something that takes its time: what it is, a line about it, its size, and one button. While
// it runs a bar grows under them, with a line that says how far it is, and the button says "Stop".
Item {
    id: root

    required property string title
    property string detail: ""
    property string size: ""
    /// The line tells of something that is amiss.
    property bool warns: false
    /// The words on the button while nothing runs; without them there is none then.
    property string action: ""
    property bool actionEnabled: true
    property int actionWidth: Metrics.rowActionWidth
    property bool running: false
    /// How far it is, from 0 to 1, and the same in words.
    property real progress: 0
    property string progressText: ""
    /// Another row stands above it in the same card.
    property bool divided: false

    signal acted
    signal stopped

    Accessible.description: (detail + ", " + size + ", " + (running ? progressText : "")).replace(/(, )+/g, ", ").replace(/^, |, $/g, "")
    Accessible.name: title
    Accessible.role: Accessible.ListItem

    implicitHeight: column.implicitHeight + 2 * Metrics.space12
    implicitWidth: Metrics.columnWidth

    Hairline {
        faint: true
        visible: root.divided
        width: parent.width
    }

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space16
        spacing: 0
        y: Metrics.space12

        RowLayout {
            spacing: Metrics.space16

            ColumnLayout {
                spacing: 0

                BodyText {
                    Accessible.ignored: true
                    Layout.fillWidth: true
                    Layout.minimumHeight: Metrics.textLine
                    color: Theme.strong
                    semibold: true
                    text: root.title
                }

                RowLayout {
                    spacing: Metrics.space8
                    visible: root.detail !== ""

                    Symbol {
                        Layout.preferredHeight: Metrics.symbolSmall
                        Layout.preferredWidth: Metrics.symbolSmall
                        color: Theme.careful
                        name: "exclamationmark.triangle"
                        visible: root.warns
                    }

                    CaptionText {
                        Layout.fillWidth: true
                        Layout.minimumHeight: Metrics.captionLine
                        color: root.warns ? Theme.careful : Theme.label
                        text: root.detail
                    }
                }
            }

            BodyText {
                color: root.warns ? Theme.label : Theme.accent
                horizontalAlignment: Text.AlignRight
                semibold: true
                text: root.size
                visible: text !== ""
            }

            PushButton {
                Accessible.description: root.title
                Layout.preferredWidth: Math.max(root.actionWidth, implicitWidth)
                enabled: root.running || root.actionEnabled
                text: root.running ? qsTr("Stop") : root.action
                visible: text !== ""
                onClicked: root.running ? root.stopped() : root.acted()
            }
        }

        ProgressLine {
            Accessible.name: root.title
            Accessible.role: Accessible.ProgressBar
            Layout.fillWidth: true
            Layout.topMargin: Metrics.space8
            implicitHeight: Metrics.gaugeBarHeight
            value: root.progress
            visible: root.running
        }

        CaptionText {
            Layout.fillWidth: true
            Layout.minimumHeight: Metrics.captionLine
            Layout.topMargin: Metrics.space4
            text: root.progressText
            visible: root.running
        }
    }
}
