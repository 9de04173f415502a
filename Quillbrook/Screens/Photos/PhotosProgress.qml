pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// How far a count, a deletion or a return is, and the way to end it; nothing while none has something to tell.
RowLayout {
    id: root

    required property PhotosState photos

    spacing: Metrics.space8
    visible: photos.progress !== ""

    CaptionText {
        text: root.photos.progress
    }

    PushButton {
        kind: PushButton.Link
        text: qsTr("Stop")
        onClicked: root.photos.stop()
    }
}
