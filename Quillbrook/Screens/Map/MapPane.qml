pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What's using space: the map, the way down to what it shows, and what is selected on it.
ColumnLayout {
    id: root

    required property BreadcrumbModel crumbs
    required property MapState map
    required property SelectionBarState selection

    spacing: 0

    Breadcrumb {
        Layout.fillHeight: false
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.paneInset - Metrics.space4
        Layout.preferredHeight: Metrics.breadcrumbHeight
        Layout.rightMargin: Metrics.paneInset
        crumbs: root.crumbs
    }

    Hairline {
        Layout.fillWidth: true
    }

    TreemapView {
        id: view

        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.paneInset
        Layout.rightMargin: Metrics.paneInset
        Layout.topMargin: Metrics.space12
        map: root.map
        z: 1
    }

    SelectionBar {
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.paneInset
        Layout.rightMargin: Metrics.paneInset
        Layout.topMargin: Metrics.space12
        selection: root.selection
        onKeyboardLeft: reason => view.enter(reason)
    }
}
