pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Find a file: a search through the names of the whole tree.
ColumnLayout {
    id: root

    required property SearchState search
    required property SelectionBarState selection

    spacing: Metrics.space12

    Connections {
        function onKeyboardOffered() {
            field.forceActiveFocus();
        }

        // The linter loses what a state in a namespace derives from.
        target: root.search // qmllint disable
    }

    InputField {
        id: field

        Layout.fillWidth: true
        Layout.leftMargin: Metrics.paneInset
        Layout.rightMargin: Metrics.paneInset
        Layout.topMargin: Metrics.paneInset
        objectName: "searchField"
        placeholderText: qsTr("Search every file name on this Mac")
        symbol: "magnifyingglass"
        text: root.search.text
        onTextEdited: root.search.text = text
    }

    NodeTable {
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.paneInset
        Layout.rightMargin: Metrics.paneInset
        name: qsTr("Found")
        selection: root.selection
        // The linter does not see through the namespace that the state's base class stands in.
        // qmllint disable type
        table: root.search
        // qmllint enable type
    }
}
