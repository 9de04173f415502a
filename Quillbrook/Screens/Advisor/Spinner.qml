pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Turns while something is awaited that nobody can tell the length of; still where movement is not wanted.
Symbol {
    id: root

    required property bool running

    color: Theme.accent
    height: Metrics.symbolMedium
    name: "arrow.clockwise"
    smooth: true
    width: Metrics.symbolMedium

    RotationAnimator on rotation {
        duration: 1200
        from: 0
        loops: Animation.Infinite
        running: root.running && root.visible && !Metrics.reducedMotion
        to: 360
    }
}
