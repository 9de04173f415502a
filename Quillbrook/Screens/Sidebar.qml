pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The list of panes, and below it the figures of the volume. The list is one stop of the Tab key; the arrow
// keys choose within it.
FocusScope {
    id: root

    required property VolumeGaugeState gauge
    required property SidebarModel rows

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space12
        anchors.rightMargin: Metrics.space12
        spacing: 0

        SectionLabel {
            Layout.bottomMargin: Metrics.space8
            Layout.leftMargin: Metrics.sidebarInset
            Layout.topMargin: Metrics.space16
            text: "STORAGE"
        }

        ListView {
            id: list

            Accessible.name: "Screens"
            Accessible.role: Accessible.List
            Keys.onDownPressed: root.rows.choose(root.rows.selectedRow + 1)
            Keys.onUpPressed: root.rows.choose(root.rows.selectedRow - 1)
            Layout.fillHeight: true
            Layout.fillWidth: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            currentIndex: root.rows.selectedRow
            focus: true
            interactive: contentHeight > height
            keyNavigationEnabled: false
            model: root.rows
            objectName: "sidebarRows"

            delegate: SidebarRow {
                id: row

                width: ListView.view.width
                onClicked: root.rows.choose(index)

                Shortcut {
                    sequence: row.shortcut
                    onActivated: root.rows.choose(row.index)
                }
            }
        }

        Hairline {
            Layout.fillWidth: true
        }

        VolumeGauge {
            Layout.bottomMargin: Metrics.space16
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.sidebarInset
            Layout.rightMargin: Metrics.sidebarInset
            Layout.topMargin: Metrics.space16
            gauge: root.gauge
        }
    }
}
