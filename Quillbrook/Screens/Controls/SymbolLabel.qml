pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Words with a symbol before them where there is one, centred in whatever room they get. Words too long for it
// are elided in the middle.
Item {
    id: root

    property alias color: words.color
    property alias font: words.font
    property alias symbol: picture.name
    property alias text: words.text

    readonly property real symbolRoom: symbol === "" ? 0 : picture.width + row.spacing

    implicitHeight: row.implicitHeight
    // In whole pixels, or rounding would take from the words what they need to be shown whole.
    implicitWidth: Math.ceil(words.implicitWidth) + symbolRoom

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Metrics.space8

        Symbol {
            id: picture

            anchors.verticalCenter: parent.verticalCenter
            color: words.color
            visible: name !== ""
        }

        BodyText {
            id: words

            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideMiddle
            width: Math.min(Math.ceil(implicitWidth), root.width - root.symbolRoom)
        }
    }
}
