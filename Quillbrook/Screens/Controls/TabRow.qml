pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The words that choose which of several lists a screen shows.
SegmentedPicker {
    id: root

    optionRole: Accessible.PageTab
    role: Accessible.PageTabList
}
