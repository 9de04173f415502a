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
