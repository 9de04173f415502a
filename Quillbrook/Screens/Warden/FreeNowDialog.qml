pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Comes up when something has just gone to the Trash, and asks whether to free the space at once.
ConfirmDialog {
    id: root

    required property FreeNowState offer

    cancelText: qsTr("Keep in Trash for now")
    message: qsTr("The Trash is on the same disk, so the space only comes back once it leaves. Freeing it now removes only what Quillbrook moved, and can't be undone. Keep it in the Trash if you might want something back.")
    hasExtra: offer.earlier.text !== ""
    title: offer.title

    Component.onCompleted: follow()
    onClosed: offer.keep()

    function follow() {
        if (offer.asked)
            open();
        else
            close();
    }

    Connections {
        function onChanged() {
            root.follow();
        }

        target: root.offer
    }

    extra: EarlierList {
        Layout.fillWidth: true
        things: root.offer.earlier
    }

    PushButton {
        kind: PushButton.Destructive
        text: qsTr("Free it now")
        onClicked: root.offer.free()
    }
}
