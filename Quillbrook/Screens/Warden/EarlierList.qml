pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What else a question is about: a sentence, and what it speaks of on demand, each with a tick that keeps it.
ColumnLayout {
    id: root

    required property EarlierThings things

    spacing: Metrics.space8

    BodyText {
        Layout.fillWidth: true
        color: Theme.strong
        text: root.things.text
        wrapMode: Text.Wrap
    }

    Disclosure {
        open: root.things.rowsShown
        text: qsTr("What is it?")
        onClicked: root.things.toggleRows()
    }

    ListView {
        Accessible.name: qsTr("What is in the Trash")
        Accessible.role: Accessible.List
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contentHeight, Metrics.listInDialogHeight)
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        model: root.things.rows
        visible: root.things.rowsShown

        delegate: HeldRow {
            id: held

            required property int index

            current: true
            first: index === 0
            showsPlace: false
            width: ListView.view.width
            onToggled: root.things.toggle(held.index)
        }
    }
}
