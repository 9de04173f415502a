pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// What is selected on the map or in a list, and what can be done with it.
Card {
    id: root

    required property SelectionBarState selection

    // What had the keyboard is about to go with the bar; `reason` is how it had come there.
    signal keyboardLeft(reason: int)

    function leave(button: T.Control, act: var) {
        const held = button.activeFocus;
        const reason = button.focusReason;
        act();
        if (held)
            keyboardLeft(reason);
    }

    Accessible.name: selection.name
    Accessible.role: Accessible.Grouping
    // The buttons stand beside the name, or below it where their words leave it no room.
    readonly property bool isWide: actions.naturalWidth + closer.width + 2 * Metrics.space16 + Metrics.symbolSize + 3 * Metrics.space12 + Metrics.selectionNameWidth <= width

    implicitHeight: Metrics.selectionBarHeight + (isWide ? 0 : actions.height + Metrics.space12) + (notice.visible ? notice.implicitHeight + Metrics.space12 : 0)
    visible: selection.present

    RowLayout {
        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16
        anchors.right: root.isWide ? actions.left : closer.left
        anchors.rightMargin: Metrics.space12
        anchors.top: parent.top
        height: Metrics.selectionBarHeight
        spacing: Metrics.space12

        Symbol {
            color: Theme.label
            name: root.selection.symbol
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            // Not layouts: those of Qt 6.4 gave the first name that was ever selected no room.
            Item {
                id: nameLine

                Layout.fillWidth: true
                implicitHeight: size.implicitHeight

                SelectableText {
                    id: name

                    activeFocusOnTab: false
                    anchors.verticalCenter: parent.verticalCenter
                    font.pointSize: Metrics.bodyFont
                    font.weight: Font.DemiBold
                    fullText: root.selection.name
                    inkColor: Theme.strong
                    width: Math.min(naturalWidth, nameLine.width - Metrics.space12 - size.width)
                }

                BodyText {
                    id: size

                    anchors.left: name.right
                    anchors.leftMargin: Metrics.space12
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.accent
                    semibold: true
                    text: root.selection.size
                }
            }

            Item {
                id: pathLine

                Layout.fillWidth: true
                implicitHeight: path.implicitHeight

                SelectableText {
                    id: path

                    anchors.verticalCenter: parent.verticalCenter
                    fullText: root.selection.path
                    width: Math.min(naturalWidth, pathLine.width - items.anchors.leftMargin - items.width)
                }

                CaptionText {
                    id: items

                    anchors.left: path.right
                    anchors.leftMargin: Metrics.space4
                    anchors.verticalCenter: parent.verticalCenter
                    text: root.selection.items === "" ? "" : "· " + root.selection.items
                    visible: text !== ""
                }
            }
        }
    }

    Flow {
        id: actions

        readonly property int below: Metrics.space16 + Metrics.symbolSize + Metrics.space12
        readonly property real naturalWidth: (opener.visible ? opener.implicitWidth + spacing : 0) + shower.implicitWidth + (mover.visible ? mover.implicitWidth + eraser.implicitWidth + 2 * spacing : 0)

        spacing: Metrics.space12
        width: root.isWide ? naturalWidth : root.width - below - Metrics.space16
        x: root.isWide ? closer.x - Metrics.space12 - naturalWidth : below
        y: root.isWide ? (Metrics.selectionBarHeight - Metrics.controlHeight) / 2 : Metrics.selectionBarHeight

        PushButton {
            id: opener

            text: qsTr("Open")
            visible: root.selection.canOpen
            onClicked: root.leave(opener, () => root.selection.open())
        }

        PushButton {
            id: shower

            text: qsTr("Show in Finder")
            onClicked: root.selection.reveal()
        }

        PushButton {
            id: mover

            enabled: !root.selection.removal.busy
            text: qsTr("Move to Trash")
            visible: root.selection.removable
            onClicked: root.selection.askToRemove(false)
        }

        PushButton {
            id: eraser

            enabled: !root.selection.removal.busy
            kind: PushButton.Destructive
            text: qsTr("Delete permanently")
            visible: root.selection.removable
            onClicked: root.selection.askToRemove(true)
        }
    }

    SymbolButton {
        id: closer

        anchors.right: parent.right
        anchors.rightMargin: Metrics.space8
        y: (Metrics.selectionBarHeight - height) / 2
        symbol: "xmark"
        text: qsTr("Clear selection")
        onClicked: root.leave(closer, () => root.selection.dismiss())
    }

    // Why it can't be removed, in place of the buttons that would.
    RowLayout {
        id: notice

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Metrics.space12
        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space16
        spacing: Metrics.space12
        visible: root.selection.refusal !== ""

        Symbol {
            Layout.alignment: Qt.AlignTop
            color: Theme.careful
            name: "hand.raised.fill"
        }

        BodyText {
            Layout.fillWidth: true
            font.pointSize: Metrics.smallFont
            text: root.selection.refusal
            wrapMode: Text.Wrap
        }
    }

    Connections {
        function onRemoveAsked() {
            confirming.open();
        }

        target: root.selection
    }

    ConfirmDialog {
        id: confirming

        message: root.selection.confirmMessage
        title: root.selection.confirmTitle

        PushButton {
            kind: root.selection.permanently ? PushButton.Destructive : PushButton.Plain
            text: root.selection.confirmAction
            onClicked: {
                confirming.close();
                root.selection.remove();
            }
        }
    }
}
