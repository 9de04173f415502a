pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What fills the window: the sidebar, and to its right the top bar, the chosen pane and the question field.
RowLayout {
    id: root

    required property MainWindowState screens

    spacing: 0

    readonly property bool appears: Window.visibility !== Window.Hidden

    onAppearsChanged: {
        if (appears)
            screens.content.appear();
        else
            screens.content.disappear();
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
            enabled: !root.screens.content.isGated
        }

        Hairline {
            Layout.fillWidth: true
        }

        Loader {
            id: right

            function show() {
                setSource(Qt.resolvedUrl("../" + root.screens.content.file), root.screens.shownProperties);
            }

            Layout.fillHeight: true
            Layout.fillWidth: true
            objectName: "right"

            Component.onCompleted: show()

            Connections {
                function onShownChanged() {
                    right.show();
                }

                target: root.screens.content
            }
        }

        AskBar {
            Layout.bottomMargin: Metrics.space16
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.paneInset
            Layout.rightMargin: Metrics.paneInset
            // Whatever scrolls above it ends here, and not at its edge.
            Layout.topMargin: Metrics.space12
            ask: root.screens.askBar
            visible: root.screens.content.asksBelow
        }
    }
}
