pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What came of the last deletion, and the way back.
ColumnLayout {
    id: root

    required property PhotosState photos

    spacing: Metrics.space8
    visible: photos.lastResult !== "" || photos.canPutBack

    BodyText {
        Accessible.role: Accessible.StaticText
        Layout.fillWidth: true
        color: Theme.safe
        text: root.photos.lastResult
        visible: text !== ""
        wrapMode: Text.Wrap
    }

    BodyText {
        Layout.fillWidth: true
        color: Theme.careful
        font.pointSize: Metrics.smallFont
        text: root.photos.furtherLines
        visible: text !== ""
        wrapMode: Text.Wrap
    }

    RowLayout {
        spacing: Metrics.space8
        visible: root.photos.canPutBack

        PushButton {
            text: root.photos.putBackText
            onClicked: root.photos.putBack()
        }

        PushButton {
            text: qsTr("Show in Trash")
            onClicked: root.photos.showInTrash()
        }
    }
}
