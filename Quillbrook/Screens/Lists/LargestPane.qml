pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Biggest files: the largest of the whole tree, whatever the map shows.
Item {
    id: root

    required property LargestState largest
    required property SelectionBarState selection

    NodeTable {
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        anchors.topMargin: Metrics.paneInset
        name: qsTr("Biggest files")
        selection: root.selection
        // The linter does not see through the namespace that the state's base class stands in.
        // qmllint disable type
        table: root.largest
        // qmllint enable type
    }
}
