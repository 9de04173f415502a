pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One file or folder of a list: its name above where it lies, its size, and the way to it in the file manager.
ListRow {
    id: root

    required property int index
    required property string name
    required property string path
    required property string size

    signal showRequested

    implicitHeight: Metrics.nodeRowHeight
    radius: Metrics.controlRadius
    text: name + ", " + size + ", " + path

    contentItem: RowLayout {
        spacing: Metrics.space12

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            BodyText {
                Layout.fillWidth: true
                color: Theme.strong
                elide: Text.ElideMiddle
                semibold: true
                text: root.name
            }

            CaptionText {
                Layout.fillWidth: true
                elide: Text.ElideMiddle
                text: root.path
            }
        }

        BodyText {
            Layout.preferredWidth: Metrics.sizeColumnWidth
            color: Theme.accent
            horizontalAlignment: Text.AlignRight
            semibold: true
            text: root.size
        }

        PushButton {
            Accessible.description: root.name
            activeFocusOnTab: root.ListView.isCurrentItem || activeFocus
            text: qsTr("Show")
            onClicked: root.showRequested()
        }
    }

    Hairline {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: root.leftPadding
        anchors.right: parent.right
        anchors.rightMargin: root.rightPadding
        faint: true
        visible: root.index < root.ListView.view.count - 1
    }
}
