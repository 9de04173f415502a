pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One pane in the sidebar: symbol, title, and the keys that choose it.
ListRow {
    id: root

    required property string hint
    required property int index
    required property bool isSelected
    required property string shortcut
    required property string symbol
    required property string title

    /// Its keys were pressed, wherever in the window.
    signal chosenByKey

    activeFocusOnTab: isSelected || activeFocus
    focusPolicy: Qt.NoFocus
    horizontalPadding: Metrics.sidebarInset
    implicitHeight: Metrics.sidebarRowHeight
    radius: Metrics.controlRadius
    selected: isSelected
    text: title
    verticalPadding: 0

    background: Rectangle {
        border.color: Theme.hairline
        border.width: root.isSelected ? Metrics.hairlineWidth : 0
        color: root.isSelected ? Theme.surface : "transparent"
        radius: root.radius

        StateTint {
            hovered: root.hovered && !root.isSelected
            pressed: root.down
            radius: parent.radius
        }

        FocusRing {
            gap: -border.width
            innerRadius: root.radius
            shown: root.activeFocus
        }
    }
    contentItem: RowLayout {
        spacing: Metrics.sidebarInset

        Symbol {
            Layout.preferredHeight: Metrics.symbolSize
            Layout.preferredWidth: Metrics.symbolSize
            color: root.isSelected ? Theme.accent : Theme.label
            name: root.symbol
        }

        BodyText {
            Accessible.ignored: true
            Layout.fillWidth: true
            Layout.preferredWidth: Math.ceil(widestTitle.advanceWidth)
            color: root.isSelected ? Theme.accent : Theme.body
            semibold: root.isSelected
            text: root.title
        }

        CaptionText {
            Accessible.ignored: true
            text: root.hint
        }
    }

    Shortcut {
        sequence: root.shortcut
        onActivated: root.chosenByKey()
    }

    // Selected or not, the title has the same room.
    TextMetrics {
        id: widestTitle

        font.pointSize: Metrics.bodyFont
        font.weight: Font.DemiBold
        text: root.title
    }
}
