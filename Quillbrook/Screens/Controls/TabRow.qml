pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The words that choose which of several lists a screen shows.
SegmentGround {
    id: root

    Accessible.role: Accessible.PageTabList
    segments: words

    Repeater {
        id: words

        model: root.options

        Segment {
            Accessible.role: Accessible.PageTab
            picker: root
        }
    }
}
