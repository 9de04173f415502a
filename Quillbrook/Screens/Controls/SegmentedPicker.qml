pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One of a few words, side by side, of which one holds.
SegmentGround {
    id: root

    Accessible.role: Accessible.Grouping
    segments: words

    Repeater {
        id: words

        model: root.options

        Segment {
            Accessible.checkable: true
            Accessible.checked: isCurrent
            Accessible.role: Accessible.RadioButton
            picker: root
        }
    }
}
