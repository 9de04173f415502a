pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A button that is a symbol alone. `text` is its name for those who hear the screen.
T.Button {
    id: root

    required property string symbol
    property color inkColor: Theme.label
    property int symbolSide: Metrics.symbolSmall

    function act() {
        if (enabled)
            clicked();
    }

    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: act()
    Keys.onEnterPressed: act()
    Keys.onReturnPressed: act()

    activeFocusOnTab: true
    hoverEnabled: true
    implicitHeight: Metrics.controlHeight
    implicitWidth: Metrics.controlHeight
    opacity: enabled ? 1 : Metrics.disabledOpacity

    background: Item {
        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: Metrics.controlRadius
        }

        FocusRing {
            gap: 0
            shown: root.visualFocus
        }
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            color: root.inkColor
            height: root.symbolSide
            name: root.symbol
            width: root.symbolSide
        }
    }
}
