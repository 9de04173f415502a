pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The list of panes, and below it the figures of the volume, the folder that was handed over and word of a newer
// version, where there are such. The list is one stop of the Tab key; the arrow keys walk it, and keep the
// keyboard. It grows with fonts whose letters are wide, so that no title is cut.
FocusScope {
    id: root

    required property GrantedFolderState folder
    required property VolumeGaugeState gauge
    required property SidebarModel rows
    required property UpdateLineState update

    implicitWidth: Math.max(Metrics.sidebarWidth, rowColumn.implicitWidth + 2 * Metrics.space12)

    Connections {
        // The keyboard goes along from row to row. Anywhere else, also in this bar, it stays.
        function onSelectedRowChanged() {
            for (let row = 0; row < list.count; ++row) {
                if (list.itemAt(row).activeFocus) {
                    list.itemAt(root.rows.selectedRow).forceActiveFocus(Qt.TabFocusReason);
                    return;
                }
            }
        }

        target: root.rows
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space12
        anchors.rightMargin: Metrics.space12
        spacing: 0

        SectionLabel {
            Layout.bottomMargin: Metrics.space8
            Layout.leftMargin: Metrics.sidebarInset
            Layout.topMargin: Metrics.space16
            text: qsTr("STORAGE")
        }

        ColumnLayout {
            id: rowColumn

            Accessible.name: qsTr("Screens")
            Accessible.role: Accessible.List
            Keys.onDownPressed: root.rows.walkTo(root.rows.selectedRow + 1)
            Keys.onPressed: event => {
                if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
                    root.rows.walkTo(event.key === Qt.Key_Home ? 0 : list.count - 1);
                    event.accepted = true;
                }
            }
            Keys.onUpPressed: root.rows.walkTo(root.rows.selectedRow - 1)
            spacing: 0

            Repeater {
                id: list

                model: root.rows

                SidebarRow {
                    Layout.fillWidth: true
                    onClicked: root.rows.choose(index)
                    onChosenByKey: root.rows.choose(index)
                }
            }
        }

        Item {
            Layout.fillHeight: true
        }

        Hairline {
            Layout.fillWidth: true
        }

        VolumeGauge {
            Layout.bottomMargin: Metrics.space12
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.sidebarInset
            Layout.rightMargin: Metrics.sidebarInset
            Layout.topMargin: Metrics.space16
            gauge: root.gauge
        }

        GrantedFolderRow {
            Layout.bottomMargin: Metrics.space8
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.sidebarInset
            Layout.rightMargin: Metrics.sidebarInset
            folder: root.folder
            visible: root.folder.isShown
        }

        // Its words begin where the figures above do.
        PushButton {
            Layout.bottomMargin: Metrics.space8
            Layout.fillWidth: false
            Layout.leftMargin: Metrics.sidebarInset - Metrics.space4
            Layout.maximumWidth: parent.width - 2 * (Metrics.sidebarInset - Metrics.space4)
            kind: PushButton.Link
            text: root.update.text
            visible: text !== ""
            onClicked: root.update.open()
        }

        Item {
            implicitHeight: Metrics.space4
        }
    }
}
