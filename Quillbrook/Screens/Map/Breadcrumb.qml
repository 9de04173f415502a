pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The way down to the folder that the map shows. What does not fit is scrolled out at the beginning.
RowLayout {
    id: root

    required property BreadcrumbModel crumbs

    spacing: Metrics.space12

    Flickable {
        id: list

        // Not a ListView: that one creates what it shows in an order of its own, which would then be the order
        // of the Tab key and of those who hear the screen.
        function reveal(crumb: Item) {
            const end = crumb.x + crumb.width + row.rightPadding;
            contentX = Math.max(end - width, Math.min(contentX, crumb.x - row.leftPadding));
        }

        function showEnd() {
            contentX = Math.max(0, contentWidth - width);
        }

        Accessible.name: qsTr("Folders above")
        Accessible.role: Accessible.List
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.leftMargin: -row.leftPadding
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentWidth: row.width
        interactive: contentWidth > width
        objectName: "breadcrumb"

        onContentWidthChanged: showEnd()
        onWidthChanged: showEnd()

        Row {
            id: row

            height: list.height
            // Room for the ring of the first and of the last.
            leftPadding: Metrics.space4
            rightPadding: Metrics.space4

            Repeater {
                model: root.crumbs

                delegate: Row {
                    id: crumb

                    required property int index
                    required property bool last
                    required property string name

                    height: row.height

                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.label
                        height: Metrics.symbolTiny
                        name: "chevron.right"
                        visible: crumb.index > 0
                        width: Metrics.symbolTiny
                    }

                    PushButton {
                        anchors.verticalCenter: parent.verticalCenter
                        font.pointSize: Metrics.bodyFont
                        font.weight: crumb.last ? Font.DemiBold : Font.Normal
                        inkColor: crumb.last ? Theme.strong : Theme.label
                        kind: PushButton.Link
                        text: crumb.name
                        width: Math.min(implicitWidth, Metrics.crumbWidth)
                        onActiveFocusChanged: if (activeFocus)
                            list.reveal(crumb)
                        onClicked: root.crumbs.popTo(crumb.index)
                    }
                }
            }
        }
    }

    BodyText {
        color: Theme.label
        font.pointSize: Metrics.smallFont
        text: qsTr("double-click to drill in")
    }
}
