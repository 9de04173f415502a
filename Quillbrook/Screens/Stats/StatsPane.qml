pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// This Mac: three live tiles and nothing else.
Item {
    id: root

    required property StatsState stats

    ColumnLayout {
        anchors.left: parent.left
        anchors.margins: Metrics.paneInset
        anchors.right: parent.right
        anchors.top: parent.top
        spacing: Metrics.space8

        SectionLabel {
            text: qsTr("LIVE")
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Metrics.space12

            StatTile {
                Layout.fillWidth: true
                course: root.stats.cpuCourse
                detail: qsTr("all cores")
                hasCourse: true
                title: qsTr("CPU busy")
                value: root.stats.cpuBusy
            }

            StatTile {
                Layout.fillWidth: true
                course: root.stats.memoryCourse
                detail: root.stats.memoryPressure
                hasCourse: true
                title: qsTr("Memory used")
                value: root.stats.memoryUsed
            }

            StatTile {
                Layout.fillWidth: true
                detail: qsTr("physical RAM")
                title: qsTr("Installed")
                value: root.stats.installed
            }
        }
    }
}
