pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Text that can be copied and may take several lines.
TextEdit {
    id: root

    Accessible.name: text
    Accessible.readOnly: true
    Accessible.role: Accessible.StaticText

    color: Theme.label
    font.pointSize: Metrics.captionFont
    readOnly: true
    renderType: TextEdit.NativeRendering
    selectByMouse: true
    selectedTextColor: Theme.surface
    selectionColor: Theme.accent
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap

    onActiveFocusChanged: {
        if (!activeFocus)
            deselect();
    }
}
