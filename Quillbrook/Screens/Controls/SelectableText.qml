pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One line that can be copied. A text too long for its room is elided in the middle, and shown whole as long
// as the keyboard is in it.
TextInput {
    id: root

    required property string fullText
    property color inkColor: Theme.label
    // What the whole text takes up.
    readonly property real naturalWidth: Math.ceil(shortened.implicitWidth) + 1
    readonly property bool isWhole: activeFocus || width >= naturalWidth

    Accessible.name: fullText
    Accessible.readOnly: true
    Accessible.role: Accessible.StaticText

    activeFocusOnTab: true
    autoScroll: activeFocus
    clip: true
    color: isWhole ? inkColor : "transparent"
    font.pointSize: Metrics.captionFont
    horizontalAlignment: TextInput.AlignLeft
    readOnly: true
    renderType: TextInput.NativeRendering
    selectByMouse: true
    selectedTextColor: Theme.surface
    selectionColor: Theme.accent
    text: fullText
    verticalAlignment: TextInput.AlignVCenter

    onActiveFocusChanged: activeFocus ? selectAll() : deselect()

    // Not a TextMetrics: with hinted fonts that adds up widths of letters other than those that are drawn, and
    // takes away more of the text than it has to.
    BodyText {
        id: shortened

        Accessible.ignored: true
        anchors.fill: parent
        color: root.inkColor
        elide: Text.ElideMiddle
        font: root.font
        objectName: "shortened"
        text: root.fullText
        visible: !root.isWhole
    }
}
