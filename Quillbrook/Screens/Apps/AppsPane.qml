pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Apps: what is installed, and what removed applications left behind.
Item {
    id: root

    required property AppsState apps

    readonly property string installedTitle: qsTr("Apps on this Mac")
    readonly property string orphansTitle: qsTr("Left behind by apps you removed")

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        anchors.topMargin: Metrics.paneInset
        spacing: Metrics.space12

        // One above the other where the words are too long for one line.
        GridLayout {
            id: head

            readonly property bool isWide: root.width >= tabs.implicitWidth + Metrics.filterWidth + Metrics.space12 + 2 * Metrics.paneInset

            Layout.fillWidth: true
            columnSpacing: Metrics.space12
            columns: isWide ? 3 : 1
            rowSpacing: Metrics.space12

            TabRow {
                id: tabs

                current: root.apps.tab
                name: qsTr("Apps")
                options: [root.installedTitle, root.orphansTitle]
                onPicked: index => root.apps.tab = index
            }

            Item {
                Layout.fillWidth: true
                visible: head.isWide
            }

            InputField {
                Layout.preferredWidth: Metrics.filterWidth
                enabled: root.apps.tab === 0
                placeholderText: qsTr("Filter")
                symbol: "magnifyingglass"
                text: root.apps.filter
                onTextEdited: root.apps.filter = text
            }
        }

        InstalledTab {
            Layout.fillHeight: true
            Layout.fillWidth: true
            apps: root.apps
            visible: root.apps.tab === 0
        }

        OrphansTab {
            Layout.fillHeight: true
            Layout.fillWidth: true
            apps: root.apps
            visible: root.apps.tab === 1
        }

        SelectableLines {
            Layout.fillWidth: true
            text: root.apps.log
            visible: text !== ""
        }
    }

    UninstallSheet {
        sheet: root.apps.sheet
    }
}
