pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Comes up when the program is told to end while things are being removed, or something is moved to another
// drive, or back.
ConfirmDialog {
    id: root

    required property QuitState question

    cancelText: qsTr("Keep going")
    message: {
        if (question.isAboutDrives)
            return qsTr("Something is being copied to another drive, or back from there. Quitting ends that, and takes away what was copied so far. Nothing is lost: all of it stays where it is now.");
        return qsTr("Quillbrook is still removing what you chose. It stops after the item that is going now; the rest stays where it is, and what has gone to the Trash can be put back.");
    }
    title: {
        if (question.isAboutDrives)
            return qsTr("Quit and stop moving?");
        return qsTr("Quit and stop removing?");
    }

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

        target: root.question
    }

    PushButton {
        kind: PushButton.Destructive
        text: qsTr("Quit")
        onClicked: root.question.quit()
    }
}
