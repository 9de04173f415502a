pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The way down to the folder that the map shows. What does not fit is scrolled out at the beginning.
RowLayout {
    id: root

    required property BreadcrumbModel crumbs

    spacing: Metrics.space12

    ListView {
        id: list

        Accessible.name: "Folders above"
        Accessible.role: Accessible.List
        Layout.fillHeight: true
        Layout.fillWidth: true
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        interactive: contentWidth > width
        model: root.crumbs
        objectName: "breadcrumb"
        orientation: ListView.Horizontal

        delegate: Row {
            id: crumb

            required property int index
            required property bool last
            required property string name

            height: ListView.view.height

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
                    list.positionViewAtIndex(crumb.index, ListView.Contain)
                onClicked: root.crumbs.popTo(crumb.index)
            }
        }

        onContentWidthChanged: positionViewAtEnd()
        onWidthChanged: positionViewAtEnd()
    }

    BodyText {
        color: Theme.label
        font.pointSize: Metrics.smallFont
        text: "double-click to drill in"
    }
}
