pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One message: the person's to the right, every other to the left. One of them all is a stop of the Tab key, and the
// arrow keys go on from there.
Item {
    id: root

    required property bool fromUser
    required property int index
    required property string message

    signal keyboardTaken
    signal stepped(int direction)

    function takeKeyboard() {
        words.forceActiveFocus(Qt.TabFocusReason);
    }

    readonly property int textRoom: width - Metrics.bubbleSpacer - 2 * Metrics.bubblePaddingX

    Accessible.name: message
    Accessible.role: Accessible.ListItem

    implicitHeight: ground.height

    Rectangle {
        id: ground

        anchors.left: root.fromUser ? undefined : parent.left
        anchors.right: root.fromUser ? parent.right : undefined
        border.color: root.fromUser ? Theme.accent : Theme.hairline
        border.width: Metrics.hairlineWidth
        color: root.fromUser ? Theme.accent : Theme.surface
        height: words.height + 2 * Metrics.bubblePaddingY
        radius: Metrics.cardRadius
        width: words.width + 2 * Metrics.bubblePaddingX

        SelectableLines {
            id: words

            Accessible.description: {
                if (root.fromUser)
                    return qsTr("You");
                return qsTr("Answer");
            }
            Keys.onDownPressed: root.stepped(1)
            Keys.onUpPressed: root.stepped(-1)
            activeFocusOnTab: root.ListView.isCurrentItem || activeFocus
            color: root.fromUser ? Theme.surface : Theme.strong
            font.pointSize: Metrics.bodyFont
            selectByKeyboard: true
            selectedTextColor: root.fromUser ? Theme.accent : Theme.surface
            selectionColor: root.fromUser ? Theme.surface : Theme.accent
            text: root.message
            width: Math.max(1, Math.min(Math.ceil(implicitWidth), root.textRoom))
            x: Metrics.bubblePaddingX
            y: Metrics.bubblePaddingY

            onActiveFocusChanged: {
                if (activeFocus)
                    root.keyboardTaken();
            }
        }

        FocusRing {
            innerRadius: parent.radius
            shown: words.activeFocus && words.selectedText === ""
        }
    }
}
