pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What to do, or what was done, about access to the library; nothing where there is access.
ColumnLayout {
    id: root

    required property PhotosState photos

    spacing: Metrics.space12
    visible: photos.asksForAccess || photos.isDeclined

    BodyText {
        Layout.fillWidth: true
        text: qsTr("Quillbrook needs access to your photo library to count what is in a range.")
        visible: root.photos.asksForAccess
        wrapMode: Text.Wrap
    }

    PushButton {
        Layout.preferredHeight: Metrics.prominentHeight
        kind: PushButton.Prominent
        text: qsTr("Allow access to Photos")
        visible: root.photos.asksForAccess
        onClicked: root.photos.allow()
    }

    BodyText {
        Layout.fillWidth: true
        color: Theme.careful
        text: qsTr("Access to Photos was declined. You can change that in System Settings › Privacy & Security › Photos. Everything else in Quillbrook works without it.")
        visible: root.photos.isDeclined
        wrapMode: Text.Wrap
    }
}
