pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// A list of files and folders, or the sentence of an empty one, with the selection bar below it. The Tab key
// stops at one row and at its button; the arrow keys walk the rows.
ColumnLayout {
    id: root

    required property string name
    required property SelectionBarState selection
    required property NodeTableState table

    spacing: Metrics.space12

    Component.onCompleted: list.startOver()

    Item {
        Layout.fillHeight: true
        Layout.fillWidth: true

        BodyText {
            anchors.centerIn: parent
            font.pointSize: Metrics.messageFont
            text: root.table.emptyMessage
            visible: list.count === 0
        }

        Card {
            height: Math.min(parent.height, list.contentHeight + 2 * Metrics.space4)
            visible: list.count > 0
            width: parent.width

            ListView {
                id: list

                // Asks the rows how many they are: the list may not know yet.
                function startOver() {
                    currentIndex = root.table.rows.rowCount() > 0 ? 0 : -1;
                    positionViewAtBeginning();
                }

                // The ring shows on rows that the keyboard went to.
                function step(rows: int) {
                    currentIndex = Math.max(0, Math.min(currentIndex + rows, count - 1));
                    if (currentItem)
                        currentItem.forceActiveFocus(Qt.TabFocusReason);
                }

                readonly property int page: Math.floor(height / Metrics.nodeRowHeight)

                Accessible.name: root.name
                Accessible.role: Accessible.List
                Keys.onDownPressed: step(1)
                Keys.onPressed: event => {
                    const steps = new Map([[Qt.Key_PageUp, -page], [Qt.Key_PageDown, page], [Qt.Key_Home, -count], [Qt.Key_End, count]]);
                    event.accepted = steps.has(event.key);
                    if (event.accepted)
                        step(steps.get(event.key));
                }
                Keys.onUpPressed: step(-1)
                anchors.fill: parent
                anchors.margins: Metrics.space4
                boundsBehavior: Flickable.StopAtBounds
                clip: true
                keyNavigationEnabled: false
                model: root.table.rows
                objectName: "nodeTable"
                reuseItems: true

                // Other rows are read from their beginning.
                Connections {
                    function onModelReset() {
                        list.startOver();
                    }

                    target: root.table.rows
                }

                T.ScrollBar.vertical: SlimScrollBar {
                }

                delegate: NodeRow {
                    activeFocusOnTab: ListView.isCurrentItem || activeFocus
                    selected: index === root.table.selectedRow
                    width: ListView.view.width
                    // The wheel may have taken it out of sight.
                    onActiveFocusChanged: if (activeFocus)
                        list.positionViewAtIndex(index, ListView.Contain)
                    onClicked: {
                        list.currentIndex = index;
                        root.table.select(index);
                    }
                    onShowRequested: root.table.reveal(index)
                }
            }
        }
    }

    SelectionBar {
        Layout.fillWidth: true
        selection: root.selection
        // A folder that was opened is on another screen.
        onKeyboardLeft: reason => {
            if (root.visible && list.currentItem)
                list.currentItem.forceActiveFocus(reason);
        }
    }
}
