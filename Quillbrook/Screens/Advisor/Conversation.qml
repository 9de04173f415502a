pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// What was said, the newest last, and what can be done after it. Before the first question it says what a model
// is shown, and offers questions.
Item {
    id: root

    required property AdvisorState advisor

    SlimScrollBar {
        id: bar

        anchors.bottom: parent.bottom
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.top: parent.top
    }

    ListView {
        id: list

        // Scrolls until the end of the last message shows, and no further.
        function showLast() {
            const from = contentY;
            forceLayout();
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
        }

        // Below the last message, and not a footer: that can't see what stands around the list.
        AnswerActions {
            id: after

            advisor: root.advisor
            parent: list.contentItem
            width: list.width
            y: list.originY + list.contentHeight + (list.count > 0 ? list.spacing : 0)
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
        id: herald

        Accessible.name: root.advisor.lastAnswer
        Accessible.role: Accessible.Notification
        height: 1
        objectName: "herald"
        visible: root.advisor.lastAnswer !== "" && !hush.running
        width: 1

        Timer {
            id: hush

            interval: 50
        }

        Connections {
            function onMessagesChanged() {
                hush.restart();
            }

            target: root.advisor // qmllint disable
        }
    }
}
