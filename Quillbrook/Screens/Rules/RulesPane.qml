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

    ListView {
        id: list

        // To the next line the keyboard stops at, up or down; stays where there is none.
        function step(direction: int) {
            let row = currentIndex + direction;
            while (row >= 0 && row < count && !root.rules.rows.takesKeyboard(row))
                row += direction;
            if (row < 0 || row >= count)
                return;
            currentIndex = row;
            currentItem.forceActiveFocus(Qt.TabFocusReason);
        }

        Accessible.name: qsTr("Automatic rules")
        Accessible.role: Accessible.List
        Keys.onDownPressed: step(1)
        Keys.onUpPressed: step(-1)
        activeFocusOnTab: true
        anchors.fill: parent
        anchors.leftMargin: Metrics.paneInset
        anchors.rightMargin: Metrics.paneInset
        boundsBehavior: Flickable.StopAtBounds
        // Rows differ in height; once those below are made, the bar beside them stays calm.
        cacheBuffer: height
        clip: true
        currentIndex: -1
        highlightFollowsCurrentItem: true
        highlightMoveDuration: Metrics.quickMotion
        keyNavigationEnabled: false
        model: root.rules.rows
        objectName: "rulesList"
        topMargin: Metrics.space20

        // Not where a press has given the keyboard to a control in a row.
        onActiveFocusChanged: {
            if (currentIndex < 0 && Window.activeFocusItem === list)
                step(1);
        }

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
