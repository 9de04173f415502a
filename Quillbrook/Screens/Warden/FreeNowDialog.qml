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
    hasExtra: offer.earlier !== ""
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

    extra: [
        BodyText {
            Layout.fillWidth: true
            color: Theme.strong
            text: root.offer.earlier
            wrapMode: Text.Wrap
        },
        Disclosure {
            open: root.offer.rowsShown
            text: qsTr("What is it?")
            onClicked: root.offer.toggleRows()
        },
        ListView {
            id: rows

            Accessible.name: qsTr("What is in the Trash")
            Accessible.role: Accessible.List
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, Metrics.listInDialogHeight)
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            model: root.offer.rows
            visible: root.offer.rowsShown

            delegate: HeldRow {
                id: held

                required property int index

                current: true
                first: index === 0
                showsPlace: false
                width: ListView.view.width
                onToggled: root.offer.toggle(held.index)
            }
        }
    ]

    PushButton {
        kind: PushButton.Destructive
        text: qsTr("Free it now")
        onClicked: root.offer.free()
    }
}
