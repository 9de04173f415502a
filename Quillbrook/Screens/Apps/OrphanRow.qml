pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One thing that has no application any more.
AppsLine {
    id: root

    required property leftoverRow row
    property bool canBeTicked: true

    signal evidenceToggled
    signal revealed
    signal toggled

    // Not where a control in it has the keyboard.
    Keys.onSpacePressed: event => {
        event.accepted = activeFocus;
        if (activeFocus && canBeTicked)
            toggled();
    }
    implicitHeight: columns.implicitHeight + 2 * Metrics.space12
    spoken: row.spoken

    RowLayout {
        id: columns

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: Metrics.space12
        spacing: Metrics.space12

        LeftoverLine {
            Layout.fillWidth: true
            canBeTicked: root.canBeTicked
            holdsKeyboard: root.isCurrent
            row: root.row
            onEvidenceToggled: root.evidenceToggled()
            onToggled: root.toggled()
        }

        PushButton {
            Accessible.description: root.row.title
            Layout.alignment: Qt.AlignTop
            activeFocusOnTab: root.isCurrent || activeFocus
            text: qsTr("Show")
            onClicked: root.revealed()
        }
    }
}
