pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What stands between the head and the foot of the sheet.
Item {
    id: root

    required property UninstallSheetState sheet

    signal keyboardAt(Item item)

    readonly property bool isFree: sheet.isPlanned && sheet.blocked === ""

    implicitHeight: column.implicitHeight + 2 * Metrics.space16

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.leftMargin: Metrics.space20
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space20
        anchors.top: parent.top
        anchors.topMargin: Metrics.space16
        spacing: Metrics.space12

        BodyText {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Metrics.space24
            Layout.topMargin: Metrics.space24
            text: qsTr("Looking for what it left behind…")
            visible: !root.sheet.isPlanned
        }

        RowLayout {
            spacing: Metrics.space12
            visible: root.sheet.blocked !== ""

            Symbol {
                Layout.alignment: Qt.AlignTop
                Layout.preferredHeight: Metrics.symbolLarge
                Layout.preferredWidth: Metrics.symbolLarge
                color: Theme.careful
                name: "hand.raised.fill"
            }

            ColumnLayout {
                spacing: Metrics.space12

                BodyText {
                    Layout.fillWidth: true
                    lineHeight: Metrics.looseLines
                    text: root.sheet.blocked
                    wrapMode: Text.Wrap
                }

                PushButton {
                    text: qsTr("Open in the software centre")
                    visible: root.sheet.hasStorePage
                    onClicked: root.sheet.openStorePage()
                }
            }
        }

        RowLayout {
            Layout.leftMargin: Metrics.tickSize + Metrics.space12
            spacing: Metrics.space12
            visible: root.isFree

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Metrics.space4 / 2

                BodyText {
                    Layout.fillWidth: true
                    color: Theme.strong
                    semibold: true
                    text: qsTr("The app itself")
                }

                BodyText {
                    Layout.fillWidth: true
                    color: Theme.label
                    font.pointSize: Metrics.smallFont
                    text: root.sheet.itself
                    wrapMode: Text.Wrap
                }
            }

            BodyText {
                Layout.alignment: Qt.AlignTop
                color: Theme.accent
                semibold: true
                text: root.sheet.itselfSize
            }
        }

        BodyText {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.tickSize + Metrics.space12
            text: root.sheet.nothingElse
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        LeftoverSection {
            Layout.fillWidth: true
            canBeTicked: root.sheet.canUninstall
            heading: root.sheet.heading
            rows: root.sheet.rows
            visible: root.isFree && heading !== ""
            onEvidenceToggled: row => root.sheet.toggleEvidence(row, false)
            onKeyboardAt: item => root.keyboardAt(item)
            onToggled: row => root.sheet.toggle(row)
        }

        LeftoverSection {
            Layout.fillWidth: true
            heading: root.sheet.lockedHeading
            rows: root.sheet.lockedRows
            visible: root.isFree && heading !== ""
            onEvidenceToggled: row => root.sheet.toggleEvidence(row, true)
            onKeyboardAt: item => root.keyboardAt(item)
        }
    }
}
