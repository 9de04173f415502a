pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One line that can be copied. A text too long for its room is elided in the middle, and shown whole as long
// as the keyboard is in it.
TextInput {
    id: root

    required property string fullText
    // What the whole text takes up.
    readonly property real naturalWidth: Math.ceil(whole.implicitWidth) + 1

    Accessible.name: fullText
    Accessible.readOnly: true
    Accessible.role: Accessible.StaticText

    activeFocusOnTab: true
    autoScroll: activeFocus
    clip: true
    color: Theme.label
    font.pointSize: Metrics.captionFont
    horizontalAlignment: TextInput.AlignLeft
    readOnly: true
    renderType: TextInput.NativeRendering
    selectByMouse: true
    selectedTextColor: Theme.surface
    selectionColor: Theme.accent
    text: activeFocus || width >= naturalWidth ? fullText : elided.elidedText
    verticalAlignment: TextInput.AlignVCenter

    onActiveFocusChanged: activeFocus ? selectAll() : deselect()

    // Not a TextMetrics: with hinted fonts that adds up widths of letters other than those that are drawn.
    Text {
        id: whole

        Accessible.ignored: true
        font: root.font
        renderType: Text.NativeRendering
        text: root.fullText
        textFormat: Text.PlainText
        visible: false
    }

    TextMetrics {
        id: elided

        elide: Text.ElideMiddle
        elideWidth: root.width
        font: root.font
        text: root.fullText
    }
}
