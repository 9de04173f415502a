pragma ComponentBehavior: Bound

import QtQuick

// Lines of different kinds, not all of which can be acted on. The Tab key stops at one line and at its controls; the
// arrow keys walk the lines that `lines.takesKeyboard` names. A line is a stop while it is the list's current item.
ListView {
    id: root

    required property var lines

    // The next line the keyboard stops at, up or down; -1 where there is none.
    function following(from: int, direction: int): int {
        let row = from + direction;
        while (row >= 0 && row < count && !lines.takesKeyboard(row))
            row += direction;
        return row < count ? row : -1;
    }

    function step(direction: int) {
        const row = following(currentIndex, direction);
        if (row < 0)
            return;
        currentIndex = row;
        enter(Qt.TabFocusReason);
    }

    function enter(reason: int) {
        positionViewAtIndex(currentIndex, ListView.Contain);
        currentItem.forceActiveFocus(reason);
    }

    function isInCurrentItem(item: Item): bool {
        let above = item;
        while (above && above !== currentItem)
            above = above.parent;
        return above !== null;
    }

    // There is always one stop. A line that went while it had the keyboard leaves it to the list, which passes it on.
    function settle() {
        if (!lines.takesKeyboard(currentIndex))
            currentIndex = following(-1, 1);
        if (currentItem && Window.activeFocusItem === root)
            enter(Qt.OtherFocusReason);
    }

    Accessible.role: Accessible.List
    Keys.onDownPressed: step(1)
    Keys.onUpPressed: step(-1)
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    // The first stop may lie below what stands above the lines, and that is read first.
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    model: lines

    // Under the pointer nothing moves.
    onActiveFocusChanged: {
        const item = Window.activeFocusItem;
        if (activeFocus && item.focusReason !== Qt.MouseFocusReason && isInCurrentItem(item))
            positionViewAtIndex(currentIndex, ListView.Contain);
    }

    Component.onCompleted: settle()
    onCountChanged: settling.start()

    // The list itself hears of a change after us.
    Timer {
        id: settling

        interval: 0

        onTriggered: root.settle()
    }

    Connections {
        function onDataChanged() {
            settling.start();
        }
        function onRowsInserted() {
            settling.start();
        }
        function onRowsRemoved() {
            settling.start();
        }

        target: root.lines
    }
}
