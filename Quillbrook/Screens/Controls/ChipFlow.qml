pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Short texts to choose from, one after the other, going on in the next line where the room ends. `name` says what
// they are.
Flow {
    id: root

    required property string name
    required property var texts

    signal chosen(int index)

    Accessible.name: name
    Accessible.role: Accessible.List

    spacing: Metrics.space8

    Repeater {
        model: root.texts

        PushButton {
            required property int index
            required property string modelData

            radius: height / 2
            text: modelData
            width: Math.min(implicitWidth, root.width)
            onClicked: root.chosen(index)
        }
    }
}
