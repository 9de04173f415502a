pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A card with the rows of one of the lists. The Tab key stops at one row and at its controls; the arrow keys walk the
// rows.
Card {
    id: root

    required property AppsListModel entries
    required property string name
    property alias delegate: list.delegate

    // A list in another order, or with one row fewer, has other rows: whoever had the keyboard gets it back.
    Connections {
        id: keeper

        property int heldAt: -1
        property string held: ""

        function giveBack() {
            const row = root.entries.rowOf(held);
            list.forceLayout();
            list.currentIndex = row < 0 ? Math.min(heldAt, list.count - 1) : row;
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
            if (list.currentItem)
                list.currentItem.forceActiveFocus(Qt.OtherFocusReason);
        }
        function onModelAboutToBeReset() {
            heldAt = list.rowWithKeyboard();
            held = root.entries.idAt(heldAt);
        }
        function onModelReset() {
            if (heldAt >= 0)
                afterReset.start();
        }

        target: root.entries
    }

    // The list itself hears of the reset after us.
    Timer {
        id: afterReset

        interval: 0

        onTriggered: keeper.giveBack()
    }

    height: Math.min(parent ? parent.height : 0, list.contentHeight + 2 * Metrics.hairlineWidth)
    visible: list.count > 0

    ListView {
        id: list

        // The ring shows on rows that the keyboard went to.
        function step(rows: int) {
            currentIndex = Math.max(0, Math.min(currentIndex + rows, count - 1));
            if (currentItem)
                currentItem.forceActiveFocus(Qt.TabFocusReason);
        }

        // -1 where the keyboard is elsewhere.
        function rowWithKeyboard(): int {
            let item = Window.activeFocusItem;
            while (item && item.parent !== contentItem)
                item = item.parent;
            return item ? indexAt(item.x, item.y) : -1;
        }

        readonly property int page: Math.max(1, Math.floor(height / Metrics.appRowHeight))

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
        anchors.margins: Metrics.hairlineWidth
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        currentIndex: 0
        keyNavigationEnabled: false
        model: root.entries

        T.ScrollBar.vertical: SlimScrollBar {
        }
    }
}
