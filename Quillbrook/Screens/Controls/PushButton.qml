pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A button with words on it, and a symbol before them where `symbol` names one. `kind` is how much it weighs:
// an ordinary action, the screen's one prominent action, something that can't be undone, or words alone.
T.Button {
    id: root

    enum Kind { Plain, Prominent, Destructive, Link }

    property int kind: PushButton.Plain
    property string symbol: ""
    property real radius: Metrics.controlRadius
    /// Ground of a prominent one.
    property color tone: Theme.accent

    readonly property bool isLink: kind === PushButton.Link
    property color inkColor: {
        switch (kind) {
        case PushButton.Prominent:
            return Theme.surface;
        case PushButton.Destructive:
            return Theme.danger;
        case PushButton.Link:
            return Theme.accent;
        default:
            return Theme.strong;
        }
    }

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
    font.pointSize: Metrics.smallFont
    font.weight: kind === PushButton.Prominent ? Font.DemiBold : Font.Normal
    horizontalPadding: isLink ? Metrics.space4 : Metrics.space12 + Metrics.hairlineWidth
    hoverEnabled: true
    implicitHeight: Metrics.controlHeight
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    opacity: enabled ? 1 : Metrics.disabledOpacity
    verticalPadding: 0

    background: Rectangle {
        border.color: root.kind === PushButton.Prominent ? root.tone : Theme.hairline
        border.width: root.isLink ? 0 : Metrics.hairlineWidth
        color: root.isLink ? "transparent" : root.kind === PushButton.Prominent ? root.tone : Theme.surface
        radius: root.radius

        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: parent.radius
        }

        FocusRing {
            innerRadius: root.radius
            shown: root.visualFocus
        }
    }
    contentItem: SymbolLabel {
        color: root.inkColor
        font: root.font
        symbol: root.symbol
        text: root.text
    }
}
