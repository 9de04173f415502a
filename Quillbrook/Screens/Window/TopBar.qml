pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The bar above every pane: the name, what the last scan saw, and the button that scans or stops.
Item {
    id: root

    required property TopBarState bar

    implicitHeight: Metrics.topBarHeight

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        spacing: Metrics.space12

        HeadingText {
            id: name

            Layout.alignment: Qt.AlignBaseline
            text: "Quillbrook"
        }

        BodyText {
            Layout.alignment: Qt.AlignBaseline
            color: Theme.label
            font.pointSize: Metrics.smallFont
            text: root.bar.summary
        }

        // Also what keeps the button at its end of the bar.
        BodyText {
            Accessible.ignored: text === ""
            Layout.alignment: Qt.AlignBaseline
            Layout.fillWidth: true
            color: Theme.label
            font.pointSize: Metrics.smallFont
            text: root.bar.shortfall
        }

        PushButton {
            enabled: root.bar.canAct
            text: root.bar.actionText
            onClicked: root.bar.act()
        }
    }
}
