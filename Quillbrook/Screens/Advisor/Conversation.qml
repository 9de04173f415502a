pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// What was said, the newest last, and what can be done after it. Before the first question it says what a model
// is shown, and offers questions.
Item {
    id: root

    required property AdvisorState advisor

    /// What had the keyboard has gone, as a suggestion does that was pressed.
    signal keyboardFreed

    function turnPage(direction: int) {
        list.turnPage(direction);
    }

    SlimScrollBar {
        id: bar

        anchors.bottom: parent.bottom
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.top: parent.top
    }

    ListView {
        id: list

        function holds(item: Item): bool {
            for (let above = item; above; above = above.parent)
                if (above === list)
                    return true;
            return false;
        }

        // What is no longer to be seen keeps it, or leaves it to the list.
        function freeKeyboard() {
            const item = list.Window.activeFocusItem;
            if (holds(item) && (item === list || !item.visible))
                root.keyboardFreed();
        }

        // The order of the children is the one of the Tab key, and of those who hear the screen.
        function putActionsLast() {
            after.parent = null;
            after.parent = contentItem;
        }

        // Takes the keyboard to the message before (-1) or after (1) the one that has it.
        function step(direction: int) {
            currentIndex = Math.min(Math.max(currentIndex + direction, 0), count - 1);
            (currentItem as Bubble)?.takeKeyboard();
        }

        // Up (-1) or down (1), by what shows at once less a line or two.
        function turnPage(direction: int) {
            scroll.stop();
            contentY += direction * (height - Metrics.space24);
            returnToBounds();
        }

        // Whatever takes the keyboard is brought into view; of what is too high for it, the beginning.
        function show(item: Item) {
            const top = item.mapToItem(contentItem, 0, 0).y - Metrics.space12;
            const bottom = top + item.height + 2 * Metrics.space12;
            scroll.stop();
            contentY = Math.min(Math.max(contentY, bottom - height), top);
            returnToBounds();
        }

        // Scrolls until the end of the last message shows, and no further.
        function showLast() {
            const from = contentY;
            forceLayout();
            currentIndex = count - 1;
            putActionsLast();
            positionViewAtIndex(count - 1, ListView.End);
            const to = contentY;
            contentY = from;
            scroll.to = to;
            scroll.restart();
        }

        Accessible.name: qsTr("Conversation")
        Accessible.role: Accessible.List
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        bottomMargin: Metrics.space16 + after.height + (count > 0 ? spacing : 0)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        highlightFollowsCurrentItem: false
        keyNavigationEnabled: false
        model: root.advisor.messages
        objectName: "conversation"
        spacing: Metrics.space12
        topMargin: Metrics.space16

        onCountChanged: {
            if (count > 0)
                later.restart();
        }

        T.ScrollBar.vertical: bar
        delegate: Bubble {
            width: ListView.view.width
            onKeyboardTaken: list.currentIndex = index
            onStepped: direction => list.step(direction)
        }

        // Below the last message, and not a footer: that can't see what stands around the list.
        AnswerActions {
            id: after

            advisor: root.advisor
            parent: list.contentItem
            width: list.width
            y: list.originY + list.contentHeight + (list.count > 0 ? list.spacing : 0)
        }

        Connections {
            function onActiveFocusItemChanged() {
                const item = list.Window.activeFocusItem;
                if (item !== list && list.holds(item))
                    list.show(item);
            }

            target: list.Window.window
        }

        // Once what is shown has followed.
        Timer {
            id: settled

            interval: 0

            onTriggered: list.freeKeyboard()
        }

        // Nobody tells that what has the keyboard has gone.
        Connections {
            function onSuggestionsChanged() {
                settled.restart();
            }

            function onThinkingChanged() {
                settled.restart();
            }

            function onMessagesChanged() {
                settled.restart();
            }

            target: root.advisor // qmllint disable
        }

        Connections {
            function onChanged() {
                settled.restart();
            }

            target: root.advisor.proposal
        }

        // Once the list has taken in the new rows.
        Timer {
            id: later

            interval: 0

            onTriggered: list.showLast()
        }

        NumberAnimation {
            id: scroll

            duration: Metrics.sheetMotion
            easing.type: Easing.OutQuad
            property: "contentY"
            target: list
        }
    }

    // Those who hear the screen are told of an answer when this appears, which it does anew with each.
    Item {
        Accessible.name: root.advisor.announcement
        Accessible.role: Accessible.Notification
        height: 1
        objectName: "herald"
        visible: root.advisor.announcement !== ""
        width: 1
    }
}
