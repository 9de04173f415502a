pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A panel over the dimmed window, until it is answered. Escape always closes it, and nothing behind it can be
// reached meanwhile. What had the keyboard before gets it back. `title` is what it is called.
T.Popup {
    id: root

    required property string title
    // Where the keyboard was, and how it came there: the ring shows to those who use it.
    property Item heldBefore: null
    property int focusReason: Qt.PopupFocusReason

    function remember() {
        const item = parent ? parent.Window.activeFocusItem : null;
        heldBefore = item && item !== parent.Window.contentItem ? item : null;
        focusReason = heldBefore?.focusReason ?? Qt.PopupFocusReason;
    }

    // Unless somebody else took it meanwhile.
    function giveBack() {
        const held = parent ? parent.Window.activeFocusItem : null;
        if (heldBefore && (!held || held === parent.Window.contentItem))
            heldBefore.forceActiveFocus(focusReason);
        heldBefore = null;
    }

    // For what is to have the keyboard first; it may have it by now, without the ring.
    function hold(control: T.Control) {
        control.forceActiveFocus(focusReason);
        control.focusReason = focusReason;
    }

    onAboutToShow: remember()
    onClosed: giveBack()

    anchors.centerIn: T.Overlay.overlay
    closePolicy: T.Popup.CloseOnEscape
    focus: true
    height: Math.min(implicitHeight, T.Overlay.overlay ? T.Overlay.overlay.height - 2 * Metrics.space24 : implicitHeight)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    modal: true
    padding: 0
    width: Metrics.sheetWidth

    background: Card {
        Accessible.name: root.title
        Accessible.role: Accessible.Dialog

        SheetShadow {
            radius: parent.radius
            z: -1
        }
    }
    enter: Transition {
        NumberAnimation {
            duration: Metrics.sheetMotion
            easing.type: Easing.OutQuad
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation {
            duration: Metrics.sheetMotion
            easing.type: Easing.OutQuad
            from: 1
            property: "opacity"
            to: 0
        }
    }
    T.Overlay.modal: Rectangle {
        color: Theme.faded(Theme.strong, Metrics.scrimOpacity)
    }
}
