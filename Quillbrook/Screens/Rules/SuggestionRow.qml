pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Something that a rule could be made for.
Item {
    id: root

    // The row at which the keyboard is, or was last.
    required property bool current
    required property rulesRow row

    signal automated

    implicitHeight: Metrics.controlHeight + 2 * (Metrics.space8 + Metrics.space4 / 2)

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space16
        anchors.rightMargin: Metrics.space16
        spacing: Metrics.space16

        BodyText {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.strong
            font.pointSize: Metrics.messageFont
            semibold: true
            text: root.row.title
        }

        BodyText {
            Accessible.ignored: true
            color: Theme.accent
            font.pointSize: Metrics.messageFont
            semibold: true
            text: root.row.size
        }

        PushButton {
            Accessible.description: root.row.title
            activeFocusOnTab: root.current
            text: qsTr("Automate…")
            onClicked: root.automated()
        }
    }
}
