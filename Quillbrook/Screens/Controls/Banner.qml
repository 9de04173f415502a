pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A card that tells one thing: symbol, title, text, a note where there is one, and after them what can be done
// about it. With `tinted` the card takes `tone` for its border and a breath of it for its ground.
Card {
    id: root

    required property string symbol
    required property string text
    required property string title
    property string note: ""
    property bool tinted: false
    property color tone: Theme.accent
    default property alias actions: actionRow.data
    // Takes the place of the card's own ground.
    property alias background: ground.data

    Accessible.description: note === "" ? text : text + " " + note
    Accessible.name: title
    Accessible.role: Accessible.Grouping

    border.color: tinted ? tone : Theme.hairline
    color: tinted ? Qt.tint(Theme.surface, Theme.faded(tone, Metrics.tintOpacity)) : Theme.surface
    implicitHeight: row.implicitHeight + 2 * Metrics.space12
    implicitWidth: Metrics.columnWidth

    Item {
        id: ground

        anchors.fill: parent
    }

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.margins: Metrics.space16
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.space12

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.preferredHeight: Metrics.symbolLarge
            Layout.preferredWidth: Metrics.symbolLarge
            color: root.tone
            name: root.symbol
        }

        ColumnLayout {
            spacing: Metrics.space4 / 2

            BodyText {
                Layout.fillWidth: true
                color: Theme.strong
                lineHeight: Metrics.textLine
                lineHeightMode: Text.FixedHeight
                semibold: true
                text: root.title
                wrapMode: Text.Wrap
            }

            CaptionText {
                Layout.fillWidth: true
                lineHeight: Metrics.captionLine
                lineHeightMode: Text.FixedHeight
                text: root.text
                wrapMode: Text.Wrap
            }

            CaptionText {
                Layout.fillWidth: true
                lineHeight: Metrics.captionLine
                lineHeightMode: Text.FixedHeight
                objectName: "note"
                text: root.note
                visible: text !== ""
                wrapMode: Text.Wrap
            }
        }

        Row {
            id: actionRow

            Layout.leftMargin: Metrics.space4
            spacing: Metrics.space8
            visible: children.length > 0
        }
    }
}
