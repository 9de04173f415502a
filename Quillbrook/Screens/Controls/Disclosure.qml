pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// Words that show or hide what belongs below them. Whoever uses it says whether that is `open`, and follows
// `clicked`.
T.AbstractButton {
    id: root

    property bool open: false

    function act() {
        if (enabled)
            clicked();
    }

    Accessible.checkable: true
    Accessible.checked: open
    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: act()
    Keys.onEnterPressed: act()
    Keys.onReturnPressed: act()

    activeFocusOnTab: true
    hoverEnabled: true
    implicitHeight: implicitContentHeight + Metrics.space4
    implicitWidth: implicitContentWidth
    opacity: down ? Metrics.faintOpacity : 1

    background: Item {
        // Lines of text stand close above and below, so the ring goes no further than the button there.
        FocusRing {
            anchors.bottomMargin: 0
            anchors.topMargin: 0
            shown: root.visualFocus
        }
    }
    contentItem: Row {
        spacing: Metrics.space4

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            height: Metrics.symbolTiny
            name: "chevron.right"
            rotation: root.open ? 90 : 0
            width: Metrics.symbolTiny

            Behavior on rotation {
                NumberAnimation {
                    duration: Metrics.quickMotion
                    easing.type: Easing.OutQuad
                }
            }
        }

        CaptionText {
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            font.underline: root.hovered
            text: root.text
        }
    }
}
