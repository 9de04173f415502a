pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A heading and the leftovers under it, divided by hairlines.
ColumnLayout {
    id: root

    required property string heading
    required property AppsListModel rows
    property bool canBeTicked: true

    signal evidenceToggled(int row)
    signal keyboardAt(Item item)
    signal toggled(int row)

    Accessible.name: heading
    Accessible.role: Accessible.List
    spacing: Metrics.space12

    Hairline {
        Layout.fillWidth: true
        faint: true
    }

    SectionLabel {
        Accessible.role: Accessible.Heading
        text: root.heading
    }

    Repeater {
        model: root.rows

        ColumnLayout {
            id: line

            required property int index
            required property leftoverRow row

            // One of its controls has the keyboard.
            readonly property bool holdsFocus: {
                let item = Window.activeFocusItem;
                while (item && item !== line)
                    item = item.parent;
                return item === line;
            }

            Accessible.name: row.spoken
            Accessible.role: Accessible.ListItem
            Layout.fillWidth: true
            spacing: Metrics.space12
            onHoldsFocusChanged: if (holdsFocus)
                root.keyboardAt(line)

            Hairline {
                Layout.fillWidth: true
                faint: true
                visible: line.index > 0
            }

            LeftoverLine {
                Layout.fillWidth: true
                canBeTicked: root.canBeTicked
                row: line.row
                onEvidenceToggled: root.evidenceToggled(line.index)
                onToggled: root.toggled(line.index)
            }
        }
    }
}
