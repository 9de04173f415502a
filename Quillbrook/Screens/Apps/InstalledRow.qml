pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One application: what it is called, what it takes, and the way to it and out.
AppsLine {
    id: root

    required property appRow row

    signal revealed
    signal uninstallAsked

    implicitHeight: Metrics.appRowHeight
    spoken: row.spoken

    RowLayout {
        anchors.fill: parent
        spacing: Metrics.space12

        AppIcon {
            source: root.row.icon
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            RowLayout {
                spacing: Metrics.space8

                BodyText {
                    Accessible.ignored: true
                    Layout.fillWidth: true
                    // A layout rounds down, and half a pixel too little would cut the words.
                    Layout.maximumWidth: Math.ceil(implicitWidth) + 1
                    color: Theme.strong
                    font.pointSize: Metrics.messageFont
                    semibold: true
                    text: root.row.name
                }

                Rectangle {
                    border.color: Theme.hairline
                    border.width: Metrics.hairlineWidth
                    color: "transparent"
                    implicitHeight: tag.implicitHeight + Metrics.hairlineWidth * 2
                    implicitWidth: Math.min(Math.ceil(tag.implicitWidth) + 1 + 2 * Metrics.space8, Metrics.appTagWidth)
                    radius: height / 2
                    visible: root.row.tag !== ""

                    CaptionText {
                        id: tag

                        Accessible.ignored: true
                        anchors.centerIn: parent
                        font.pointSize: Metrics.sectionFont
                        text: root.row.tag
                        width: parent.width - 2 * Metrics.space8
                    }
                }

                Item {
                    Layout.fillWidth: true
                }
            }

            CaptionText {
                Accessible.ignored: true
                Layout.fillWidth: true
                text: root.row.detail
                visible: text !== ""
            }
        }

        BodyText {
            Accessible.ignored: true
            Layout.preferredWidth: Metrics.sizeColumnWidth
            color: Theme.accent
            font.pointSize: Metrics.messageFont
            horizontalAlignment: Text.AlignRight
            semibold: true
            text: root.row.size
        }

        PushButton {
            Accessible.description: root.row.name
            activeFocusOnTab: root.isCurrent || activeFocus
            text: qsTr("Show")
            onClicked: root.revealed()
        }

        PushButton {
            Accessible.description: root.row.name
            activeFocusOnTab: root.isCurrent || activeFocus
            text: qsTr("Uninstall…")
            onClicked: root.uninstallAsked()
        }
    }
}
