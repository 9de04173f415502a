pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

Window {
    id: root

    color: Theme.page
    height: Metrics.windowHeight
    minimumHeight: Metrics.windowMinimumHeight
    minimumWidth: Metrics.windowMinimumWidth
    title: "Quillbrook"
    visible: true
    width: Metrics.windowWidth
}
