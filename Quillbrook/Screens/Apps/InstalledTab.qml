pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The applications that are there, and how far their measuring is.
ColumnLayout {
    id: root

    required property AppsState apps

    spacing: Metrics.space12

    RowLayout {
        Layout.fillWidth: true
        spacing: Metrics.space20

        BodyText {
            Layout.fillWidth: true
            color: Theme.label
            font.pointSize: Metrics.smallFont
            lineHeight: Metrics.textLine
            lineHeightMode: Text.FixedHeight
            text: qsTr("Removing an app here takes its settings, caches and containers with it. Dragging it to the Trash leaves all of that behind.")
            wrapMode: Text.Wrap
        }

        CaptionText {
            text: root.apps.progress
            visible: text !== ""
        }

        ProgressLine {
            Accessible.name: root.apps.progress
            implicitHeight: Metrics.gaugeBarHeight
            implicitWidth: Metrics.sizeColumnWidth
            value: root.apps.fraction
            visible: root.apps.isLoading && root.apps.progress !== ""
        }

        PushButton {
            text: root.apps.loadAction
            visible: root.apps.progress !== ""
            onClicked: root.apps.stopOrGoOn()
        }
    }

    Item {
        Layout.fillHeight: true
        Layout.fillWidth: true

        BodyText {
            anchors.centerIn: parent
            font.pointSize: Metrics.messageFont
            text: root.apps.emptyMessage
            visible: text !== ""
        }

        AppsList {
            entries: root.apps.rows
            name: qsTr("Apps on this Mac")
            width: parent.width

            delegate: InstalledRow {
                width: ListView.view.width
                onRevealed: root.apps.reveal(index)
                onUninstallAsked: root.apps.askToUninstall(index)
            }
        }
    }
}
