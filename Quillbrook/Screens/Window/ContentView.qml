import QtQuick
import QtQuick.Layouts
import Quillbrook

// What fills the window: the sidebar, and to its right the top bar, the chosen pane and the question field.
// Not `ComponentBehavior: Bound`, unlike the other files: a Loader of Qt 6.4 can't create bound components.
RowLayout {
    id: root

    required property MainWindowState screens

    spacing: 0

    readonly property bool appears: Window.visibility !== Window.Hidden

    onAppearsChanged: {
        if (appears)
            screens.content.appear();
    }

    Sidebar {
        Layout.fillHeight: true
        folder: root.screens.grantedFolder
        gauge: root.screens.volumeGauge
        rows: root.screens.sidebar
        update: root.screens.updateLine
    }

    Hairline {
        Layout.fillHeight: true
    }

    ColumnLayout {
        Layout.fillHeight: true
        Layout.fillWidth: true
        spacing: 0

        TopBar {
            Layout.fillWidth: true
            bar: root.screens.topBar
            // There is nothing that may be scanned.
            enabled: root.screens.content.view !== ContentState.Gate
        }

        Hairline {
            Layout.fillWidth: true
        }

        Loader {
            Layout.fillHeight: true
            Layout.fillWidth: true
            sourceComponent: {
                switch (root.screens.content.view) {
                case ContentState.Gate:
                    return gate;
                case ContentState.Scanning:
                    return scanning;
                case ContentState.Warden:
                    return warden;
                case ContentState.Map:
                    return map;
                case ContentState.Largest:
                    return largest;
                case ContentState.Search:
                    return search;
                default:
                    return notice;
                }
            }
        }

        AskBar {
            Layout.bottomMargin: Metrics.space16
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.paneInset
            Layout.rightMargin: Metrics.paneInset
            ask: root.screens.askBar
            visible: root.screens.content.asksBelow
        }
    }

    // qmllint disable unqualified
    Component {
        id: gate

        PermissionGate {
            content: root.screens.content
        }
    }

    Component {
        id: scanning

        ScanningView {
            scan: root.screens.scanning
        }
    }

    Component {
        id: warden

        WardenPane {
            warden: root.screens.warden
        }
    }

    Component {
        id: map

        MapPane {
            crumbs: root.screens.crumbs
            map: root.screens.map
            selection: root.screens.selection
        }
    }

    Component {
        id: largest

        LargestPane {
            largest: root.screens.largest
            selection: root.screens.selection
        }
    }

    Component {
        id: search

        SearchPane {
            search: root.screens.search
            selection: root.screens.selection
        }
    }

    Component {
        id: notice

        CentredNotice {
            message: root.screens.content.noticeMessage
            title: root.screens.content.noticeTitle
        }
    }
    // qmllint enable unqualified
}
