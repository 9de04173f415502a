pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// In a sandbox, the folder that was handed over, with a warning when it lies on the wrong disk.
ColumnLayout {
    id: root

    required property GrantedFolderState folder

    spacing: Metrics.space4

    BodyText {
        Layout.fillWidth: true
        color: Theme.danger
        font.pointSize: Metrics.warningFont
        semibold: true
        text: qsTr("That is not this Mac's startup disk")
        visible: root.folder.isWrongVolume
        wrapMode: Text.Wrap
    }

    CaptionText {
        Layout.fillWidth: true
        text: qsTr("Freeing space there will not help a full internal disk.")
        visible: root.folder.isWrongVolume
        wrapMode: Text.Wrap
    }

    RowLayout {
        spacing: Metrics.space8

        CaptionText {
            Layout.fillWidth: true
            elide: Text.ElideMiddle
            objectName: "grantedName"
            text: root.folder.name
        }

        PushButton {
            text: qsTr("Change")
            onClicked: root.folder.change()
        }
    }
}
