pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A row of a card about something that is on or off: its title and text, small lines under them, a size, and the
// switch. It shows `on` and asks for what the person wants; whether that comes true is not its own to say. What
// else can be done stands before the switch, so that all switches of a screen stay in one column.
Item {
    id: root

    required property bool on
    required property string title
    property string text: ""
    property string caption: ""
    /// A last line, in the colour of `noteTone`.
    property string note: ""
    property color noteTone: Theme.safe
    /// The Tab key stops at the switch.
    property bool reachable: true
    property string size: ""
    /// Another row stands above it in the same card.
    property bool divided: false
    default property alias actions: actionRow.data

    readonly property bool acts: actionRow.children.length > 0

    signal asked(bool wanted)

    Accessible.description: (text + " " + caption + " " + note + " " + size).replace(/ +/g, " ").trim()
    Accessible.name: title
    Accessible.role: Accessible.ListItem

    implicitHeight: words.implicitHeight + 2 * Metrics.space12
    implicitWidth: Metrics.columnWidth

    Hairline {
        faint: true
        visible: root.divided
        width: parent.width
    }

    ColumnLayout {
        id: words

        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16
        anchors.right: side.left
        anchors.rightMargin: Metrics.space16
        spacing: Metrics.space4 / 2
        y: Metrics.space12

        BodyText {
            id: titleLine

            Accessible.ignored: true
            Layout.fillWidth: true
            Layout.minimumHeight: Metrics.textLine
            color: Theme.strong
            font.pointSize: Metrics.messageFont
            semibold: true
            text: root.title
        }

        BodyText {
            Layout.fillWidth: true
            color: Theme.label
            font.pointSize: Metrics.smallFont
            lineHeight: Metrics.textLine
            lineHeightMode: Text.FixedHeight
            text: root.text
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            lineHeight: Metrics.captionLine
            lineHeightMode: Text.FixedHeight
            text: root.caption
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            color: root.noteTone
            lineHeight: Metrics.captionLine
            lineHeightMode: Text.FixedHeight
            text: root.note
            visible: text !== ""
            wrapMode: Text.Wrap
        }
    }

    Row {
        id: side

        anchors.right: parent.right
        anchors.rightMargin: Metrics.space16
        spacing: Metrics.space16
        // On the title's line; beside buttons, in the middle of the row.
        y: root.acts ? (root.height - height) / 2 : words.y + titleLine.y + (titleLine.height - height) / 2

        BodyText {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            font.pointSize: Metrics.messageFont
            horizontalAlignment: Text.AlignRight
            semibold: true
            text: root.size
            visible: text !== ""
            width: Math.max(Metrics.sizeColumnWidth, Math.ceil(implicitWidth))
        }

        Row {
            id: actionRow

            anchors.verticalCenter: parent.verticalCenter
            spacing: Metrics.space8
            visible: root.acts
        }

        ToggleSwitch {
            Accessible.description: root.text
            activeFocusOnTab: root.reachable
            anchors.verticalCenter: parent.verticalCenter
            checked: root.on
            name: root.title
            onToggled: {
                root.asked(checked);
                // Bound anew, so that it goes back at once where nothing came of it.
                checked = Qt.binding(() => root.on);
            }
        }
    }
}
