pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// Move to another drive: what could go, where to, what lies on other drives already, and what came of it all.
ColumnLayout {
    id: root

    required property OffloadState offload

    spacing: 0

    OffloadHeader {
        Layout.fillWidth: true
        offload: root.offload
    }

    Hairline {
        Layout.fillWidth: true
    }

    Item {
        Layout.fillHeight: true
        Layout.fillWidth: true

        SlimScrollBar {
            id: bar

            anchors.bottom: parent.bottom
            anchors.right: parent.right
            anchors.rightMargin: Metrics.space4
            anchors.top: parent.top
        }

        Flickable {
            id: flickable

            // Whatever takes the keyboard is brought into view.
            function show(item: Item) {
                const top = item.mapToItem(column, 0, 0).y;
                if (top < contentY)
                    contentY = Math.max(top - Metrics.space20, 0);
                else if (top + item.height > contentY + height)
                    contentY = top + item.height + Metrics.space20 - height;
            }

            anchors.fill: parent
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            contentHeight: column.implicitHeight + Metrics.space20
            objectName: "offloadFlickable"

            T.ScrollBar.vertical: bar

            Connections {
                function onActiveFocusItemChanged() {
                    const item = flickable.Window.activeFocusItem;
                    for (let above = item; above; above = above.parent)
                        if (above === column)
                            flickable.show(item);
                }

                target: flickable.Window.window
            }

            ColumnLayout {
                id: column

                spacing: 0
                width: flickable.width - 2 * Metrics.paneInset
                x: Metrics.paneInset

                SectionLabel {
                    Layout.preferredHeight: Metrics.wardenHeadingHeight
                    text: qsTr("RARELY USED — SAFE TO MOVE")
                }

                // Nearer to its heading than a card would be.
                CaptionText {
                    Layout.bottomMargin: Metrics.space8
                    Layout.fillWidth: true
                    Layout.topMargin: -Metrics.space4
                    lineHeight: Metrics.captionLine
                    lineHeightMode: Text.FixedHeight
                    text: qsTr("Things your Mac reads constantly are deliberately left out. Moving those to a slower drive would make everything feel sluggish, however much room it has.")
                    wrapMode: Text.Wrap
                }

                BodyText {
                    Layout.fillWidth: true
                    text: qsTr("Nothing on this Mac is both large and cold right now.")
                    visible: root.offload.candidates.isEmpty
                    wrapMode: Text.Wrap
                }

                OffloadRows {
                    Layout.fillWidth: true
                    action: qsTr("Move")
                    actionWidth: Metrics.rowActionWidth
                    name: qsTr("RARELY USED — SAFE TO MOVE")
                    rows: root.offload.candidates
                    visible: !rows.isEmpty
                    onActed: row => root.offload.move(row)
                    onStopped: root.offload.stop()
                }

                SectionLabel {
                    Layout.preferredHeight: Metrics.wardenHeadingHeight
                    text: qsTr("WHERE TO MOVE IT")
                }

                DestinationCard {
                    id: destination

                    Layout.fillWidth: true
                    offload: root.offload
                }

                SectionLabel {
                    Layout.preferredHeight: Metrics.wardenHeadingHeight
                    text: qsTr("ON ANOTHER DRIVE")
                    visible: !root.offload.moved.isEmpty
                }

                OffloadRows {
                    Layout.fillWidth: true
                    action: qsTr("Bring back")
                    actionWidth: Metrics.bringBackWidth
                    name: qsTr("ON ANOTHER DRIVE")
                    rows: root.offload.moved
                    visible: !rows.isEmpty
                    onActed: row => root.offload.askToBringBack(row)
                    onStopped: root.offload.stop()
                }

                SectionLabel {
                    Layout.preferredHeight: Metrics.wardenHeadingHeight
                    text: qsTr("ACTIVITY")
                    visible: root.offload.activity.length > 0
                }

                Repeater {
                    model: root.offload.activity

                    SelectableLines {
                        required property string modelData

                        Layout.fillWidth: true
                        text: modelData
                    }
                }
            }
        }
    }

    Connections {
        function onBringBackAsked() {
            question.open();
        }

        function onVolumeWanted() {
            destination.takeKeyboard();
        }

        // The linter loses what a state in a namespace derives from.
        target: root.offload // qmllint disable
    }

    ConfirmDialog {
        id: question

        message: root.offload.questionMessage
        title: root.offload.questionTitle

        PushButton {
            text: qsTr("Bring back")
            onClicked: {
                question.close();
                root.offload.bringBack();
            }
        }
    }
}
