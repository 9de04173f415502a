pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One switch of the panel in the tray, with the line of truth under its words. It shows `on` and asks for what
// the person wants; whether that comes true is not its own to say. What can be done about the line stands
// under it.
Item {
    id: root

    /// A second sentence under the line, where there is one.
    property string hint: ""
    required property string line
    required property bool on
    required property string title
    default property alias actions: actionRow.data

    signal asked(bool wanted)

    implicitHeight: Math.max(words.implicitHeight, toggle.implicitHeight)
    implicitWidth: words.implicitWidth + Metrics.space24 + toggle.implicitWidth

    // The first in the tree: what the words offer comes after it.
    ToggleSwitch {
        id: toggle

        Accessible.description: root.hint === "" ? root.line : root.line + " " + root.hint
        anchors.right: parent.right
        checked: root.on
        name: root.title
        onToggled: {
            root.asked(checked);
            // Bound anew, so that it goes back at once where nothing came of it.
            checked = Qt.binding(() => root.on);
        }
    }

    ColumnLayout {
        id: words

        anchors.left: parent.left
        anchors.right: toggle.left
        anchors.rightMargin: Metrics.space24
        spacing: 0

        BodyText {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.strong
            text: root.title
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            Layout.topMargin: Metrics.space4 / 2
            lineHeight: Metrics.looseLines
            text: root.line
            wrapMode: Text.Wrap
        }

        CaptionText {
            Layout.fillWidth: true
            lineHeight: Metrics.looseLines
            text: root.hint
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        Row {
            id: actionRow

            // The words of a link stand where those above begin.
            Layout.leftMargin: -Metrics.space4
            topPadding: visibleChildren.length > 0 ? Metrics.space4 : 0
        }
    }
}
