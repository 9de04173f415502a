pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Stands before everything else as long as there is no folder that may be read, and asks for one.
Item {
    id: root

    required property ContentState content

    Column {
        anchors.centerIn: parent
        spacing: Metrics.space16
        width: Math.min(Metrics.noticeWidth, parent.width - 2 * Metrics.paneInset)

        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.accent
            height: Metrics.symbolHuge
            name: "folder.badge.questionmark"
            width: Metrics.symbolHuge
        }

        Column {
            spacing: Metrics.space8
            width: parent.width

            HeadingText {
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("Quillbrook needs to see your files to measure them")
                width: parent.width
                wrapMode: Text.Wrap
            }

            BodyText {
                font.pointSize: Metrics.messageFont
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("It reads names, sizes and dates — never the contents of a file. Choose your home folder and it will not ask again.")
                width: parent.width
                wrapMode: Text.Wrap
            }
        }

        PushButton {
            anchors.horizontalCenter: parent.horizontalCenter
            implicitHeight: Metrics.prominentHeight
            kind: PushButton.Prominent
            text: qsTr("Choose my home folder…")
            onClicked: root.content.chooseHomeFolder()
        }
    }
}
