pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// A related group that could go as well.
RowLayout {
    id: root

    required property string text

    signal clearAsked

    spacing: Metrics.space8

    Symbol {
        Layout.preferredHeight: Metrics.symbolMedium
        Layout.preferredWidth: Metrics.symbolMedium
        color: Theme.accent
        name: "sparkles"
    }

    BodyText {
        Layout.fillWidth: true
        Layout.maximumWidth: implicitWidth
        font.pointSize: Metrics.smallFont
        text: root.text
        wrapMode: Text.Wrap
    }

    PushButton {
        text: qsTr("Clear those too")
        onClicked: root.clearAsked()
    }

    Item {
        Layout.fillWidth: true
    }
}
