pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A finding of a scan that runs: what it is, and how much.
Item {
    id: root

    required property int index
    required property string size
    required property string title

    Accessible.name: title + ", " + size
    Accessible.role: Accessible.ListItem
    implicitHeight: Metrics.rowHeight

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space16
        anchors.rightMargin: Metrics.space16
        spacing: Metrics.space12

        BodyText {
            Layout.fillWidth: true
            color: Theme.strong
            text: root.title
        }

        BodyText {
            color: Theme.accent
            semibold: true
            text: root.size
        }
    }

    Hairline {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        faint: true
        visible: root.index > 0
    }
}
