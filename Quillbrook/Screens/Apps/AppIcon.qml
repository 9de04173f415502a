pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The icon of an application, or a sign in its place. The picture is read off the main thread.
Item {
    id: root

    /// Address of the picture; empty without one.
    required property string source
    property int side: Metrics.appIconSize

    Accessible.ignored: true
    implicitHeight: side
    implicitWidth: side

    Rectangle {
        anchors.fill: parent
        color: Theme.faded(Theme.accent, Metrics.pressedOpacity)
        radius: Metrics.dotSize
        visible: picture.status !== Image.Ready

        Symbol {
            anchors.centerIn: parent
            color: Theme.label
            height: root.side / 2
            name: "app.badge"
            width: root.side / 2
        }
    }

    Image {
        id: picture

        anchors.fill: parent
        asynchronous: true
        fillMode: Image.PreserveAspectFit
        source: root.source
        sourceSize.height: 2 * root.side
        sourceSize.width: 2 * root.side
        visible: status === Image.Ready
    }
}
