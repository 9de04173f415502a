pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Words with a symbol before them where there is one, centred in whatever room they get.
Item {
    id: root

    property alias color: words.color
    property alias font: words.font
    property alias symbol: picture.name
    property alias text: words.text

    implicitHeight: row.implicitHeight
    implicitWidth: row.implicitWidth

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
        }
    }
}
