pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// One line of text to type into, with a symbol before it where `symbol` names one. `plain` leaves out ground,
// border and ring, for a field that lies in a card of its own.
T.TextField {
    id: root

    /// What stands in it can't be taken.
    property bool invalid: false
    property bool plain: false
    property string symbol: ""

    Accessible.name: placeholderText
    Accessible.role: Accessible.EditableText

    activeFocusOnTab: true
    color: Theme.strong
    font.pointSize: Metrics.bodyFont
    hoverEnabled: true
    implicitHeight: Metrics.fieldHeight
    implicitWidth: Metrics.dialogWidth / 2
    leftPadding: symbol === "" ? Metrics.space12 : Metrics.space12 + Metrics.symbolSize + Metrics.space8
    opacity: enabled ? 1 : Metrics.disabledOpacity
    placeholderTextColor: Theme.faded(Theme.label, Metrics.quietOpacity)
    renderType: Text.NativeRendering
    rightPadding: Metrics.space12
    selectByMouse: true
    selectedTextColor: Theme.surface
    selectionColor: Theme.accent
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: root.invalid ? Theme.danger : Theme.hairline
        border.width: root.plain ? 0 : Metrics.hairlineWidth
        color: root.plain ? "transparent" : Theme.surface
        radius: Metrics.controlRadius

        FocusRing {
            shown: root.activeFocus && !root.plain
        }
    }

    Symbol {
        anchors.left: parent.left
        anchors.leftMargin: Metrics.space12
        anchors.verticalCenter: parent.verticalCenter
        name: root.symbol
        visible: root.symbol !== ""
    }

    BodyText {
        anchors.left: parent.left
        anchors.leftMargin: root.leftPadding
        anchors.right: parent.right
        anchors.rightMargin: root.rightPadding
        anchors.verticalCenter: parent.verticalCenter
        Accessible.ignored: true
        color: root.placeholderTextColor
        font: root.font
        text: root.placeholderText
        visible: root.length === 0 && root.preeditText === ""
    }
}
