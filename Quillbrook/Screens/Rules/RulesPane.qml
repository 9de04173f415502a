pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// Automatic rules. The list is one stop of the Tab key; the arrow keys walk what can be switched or pressed, Space
// switches it, and Tab goes on to its controls.
Item {
    id: root

    required property RulesState rules

    // Beside the cards, not over them.
    SlimScrollBar {
        id: bar

        anchors.bottom: parent.bottom
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.top: parent.top
    }

    LineList {
        id: list

        Accessible.name: qsTr("Automatic rules")
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        // Rows differ in height; once those below are made, the bar beside them stays calm.
        cacheBuffer: height
        lines: root.rules.rows
        objectName: "rulesList"
        topMargin: Metrics.space20

        T.ScrollBar.vertical: bar
        delegate: RulesLine {
            rules: root.rules
            width: ListView.view.width
            onTouched: list.currentIndex = index
        }
    }

    RuleEditor {
        id: sheet

        editor: root.rules.editor

        // Back to where the sheet was opened from.
        onClosed: {
            if (list.currentItem)
                list.currentItem.forceActiveFocus(Qt.PopupFocusReason);
        }
    }

    Connections {
        function onDraftChanged() {
            sheet.follow();
        }

        target: root.rules.editor
    }

    // A scan may have stood in front of the screen while the sheet was open.
    Component.onCompleted: sheet.follow()
}
