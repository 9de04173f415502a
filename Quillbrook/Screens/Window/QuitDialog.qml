pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Comes up when the program is told to quit while things are being removed.
ConfirmDialog {
    id: root

    required property QuitState quitting

    message: qsTr("Quillbrook is still removing what you chose. It stops after the item that is going now; the rest stays where it is, and what has gone to the Trash can be put back.")
    title: qsTr("Stop removing and quit?")

    Component.onCompleted: follow()
    onClosed: quitting.keep()

    function follow() {
        if (quitting.asked)
// Comes up when the program is told to end while something is moved to another drive, or back.
ConfirmDialog {
    id: root

    required property QuitState question

    cancelText: qsTr("Keep going")
    message: qsTr("Something is being copied to another drive, or back from there. Quitting ends that, and takes away what was copied so far. Nothing is lost: all of it stays where it is now.")
    title: qsTr("Quit and stop moving?")

    Component.onCompleted: follow()
    onClosed: question.stay()

    function follow() {
        if (question.asked)
            open();
        else
            close();
    }

    Connections {
        function onChanged() {
            root.follow();
        }

        target: root.quitting
    }

    PushButton {
        text: qsTr("Stop and quit")
        onClicked: root.quitting.quit()
        target: root.question
    }

    PushButton {
        kind: PushButton.Destructive
        text: qsTr("Quit")
        onClicked: root.question.quit()
    }
}
