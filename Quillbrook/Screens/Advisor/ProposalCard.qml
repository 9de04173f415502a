pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// A removal that is on offer: what goes, how much that frees, and whether to go on.
Card {
    id: root

    required property ProposalState proposal

    Accessible.description: proposal.summary
    Accessible.name: proposal.heading
    Accessible.role: Accessible.Grouping

    implicitHeight: column.implicitHeight + 2 * Metrics.proposalInset

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.margins: Metrics.proposalInset
        anchors.right: parent.right
        anchors.top: parent.top
        spacing: 0

        HeadingText {
            Layout.fillWidth: true
            text: root.proposal.heading
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            text: root.proposal.summary
        }

        BodyText {
            Layout.fillWidth: true
            Layout.topMargin: Metrics.space12
            text: root.proposal.consequence
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        // Long lists scroll within the card, and only what shows is made.
        ListView {
            id: rows

            // To the next row that may be chosen, up or down.
            function step(direction: int) {
                currentIndex = root.proposal.step(currentIndex, direction);
                if (currentItem)
                    currentItem.forceActiveFocus(Qt.TabFocusReason);
            }

            Accessible.name: root.proposal.heading
            Accessible.role: Accessible.List
            Keys.onDownPressed: step(1)
            Keys.onUpPressed: step(-1)
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, Metrics.proposalListHeight)
            Layout.topMargin: Metrics.space12
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            highlightFollowsCurrentItem: true
            highlightMoveDuration: Metrics.quickMotion
            interactive: contentHeight > height
            keyNavigationEnabled: false
            model: root.proposal.items
            objectName: "proposalItems"
            spacing: Metrics.space8
            visible: count > 0

            T.ScrollBar.vertical: SlimScrollBar {}
            delegate: ItemRow {
                width: ListView.view.width
                onActiveFocusChanged: {
                    if (activeFocus)
                        rows.currentIndex = index;
                }
                onClicked: root.proposal.choose(index)
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Metrics.space12
            spacing: Metrics.space8

            PushButton {
                enabled: root.proposal.canMove
                kind: PushButton.Prominent
                objectName: "moveButton"
                text: qsTr("Move to Trash")
                onClicked: root.proposal.askToMove()
            }

            PushButton {
                text: qsTr("Not now")
                onClicked: root.proposal.dismiss()
            }

            Item {
                Layout.fillWidth: true
            }

            CaptionText {
                text: root.proposal.frees
                visible: text !== ""
            }
        }

        AlsoConsider {
            Layout.fillWidth: true
            Layout.topMargin: Metrics.space12
            text: root.proposal.alsoConsider
            visible: text !== ""
            onClearAsked: root.proposal.clearAlso()
        }
    }
}
