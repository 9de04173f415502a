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
    }
}
