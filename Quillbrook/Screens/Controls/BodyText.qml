pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Running text. Wraps where a width is given and `wrapMode` asks for it; otherwise a long text is elided. Text
// that only repeats what a control around it is called sets `Accessible.ignored`.
Text {
    id: root

    property bool semibold: false

    Accessible.name: text
    Accessible.role: Accessible.StaticText
    color: Theme.body
    elide: Text.ElideRight
    font.pointSize: Metrics.bodyFont
    font.weight: semibold ? Font.DemiBold : Font.Normal
    // Also a name in letters that are written from right to left stays where its column begins.
    horizontalAlignment: Text.AlignLeft
    renderType: Text.NativeRendering
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
