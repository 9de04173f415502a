pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The map with the panel that follows the pointer over it.
Item {
    id: root

    required property MapState map

    function enter(reason: int) {
        item.forceActiveFocus(reason);
    }

    TreemapItem {
        id: item

        Accessible.name: qsTr("Map")
        Accessible.role: Accessible.List
        anchors.fill: parent
        map: root.map
        objectName: "treemap"
    }

    TreemapTooltip {
        map: root.map
    }
}
