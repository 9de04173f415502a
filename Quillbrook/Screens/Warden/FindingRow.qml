pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One finding: its tick, or a lock where there is none; what it is and how it comes back; and the way to it.
CardSlice {
    id: root

    // The row at which the keyboard is, or was last.
    required property bool current
    // The keyboard is at the row itself and not at a control in it.
    required property bool hasKeyboard
    required property wardenRow row

    signal pathToggled
    signal revealed
    signal toggled

    first: row.first
    implicitHeight: columns.implicitHeight + 2 * Metrics.space12
    last: row.last

    RowLayout {
        id: columns

        anchors.left: parent.left
        anchors.leftMargin: Metrics.findingInset
        anchors.right: parent.right
        anchors.rightMargin: Metrics.findingInset
        anchors.top: parent.top
        anchors.topMargin: Metrics.space12
        spacing: Metrics.space12

        Item {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: Metrics.space4 / 2
            implicitHeight: Metrics.tickSize
            implicitWidth: Metrics.tickSize

            TickBox {
                activeFocusOnTab: root.current
                checked: root.row.ticked
                enabled: !root.row.waits
                name: root.row.title
                visible: root.row.selectable
                onToggled: {
                    root.toggled();
                    // A click has put its own answer in the binding's place.
                    checked = Qt.binding(() => root.row.ticked);
                }
            }

            Symbol {
                Accessible.name: qsTr("Locked")
                Accessible.role: Accessible.Graphic
                anchors.fill: parent
                color: Theme.label
                name: "lock.fill"
                visible: !root.row.selectable
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Metrics.space4 / 2

            RowLayout {
                spacing: Metrics.space12

                BodyText {
                    Layout.fillWidth: true
                    // A layout rounds down, and half a pixel too little would cut the words.
                    Layout.maximumWidth: Math.ceil(implicitWidth) + 1
                    color: Theme.strong
                    font.pointSize: Metrics.messageFont
                    semibold: true
                    text: root.row.title
                }

                BodyText {
                    color: Theme.accent
                    font.pointSize: Metrics.messageFont
                    semibold: true
                    text: root.row.size
                }
            }

            CaptionText {
                Layout.fillWidth: true
                text: root.row.ages
            }

            BodyText {
                Layout.fillWidth: true
                color: Theme.strong
                font.pointSize: Metrics.smallFont
                text: root.row.what
                wrapMode: Text.Wrap
            }

            BodyText {
                Layout.fillWidth: true
                color: Theme.label
                font.pointSize: Metrics.smallFont
                text: root.row.regenerates
                visible: text !== ""
                wrapMode: Text.Wrap
            }

            BodyText {
                Layout.fillWidth: true
                color: Theme.careful
                font.pointSize: Metrics.smallFont
                text: root.row.note
                visible: text !== ""
                wrapMode: Text.Wrap
            }

            Disclosure {
                Accessible.description: root.row.title
                activeFocusOnTab: root.current
                open: root.row.pathShown
                text: qsTr("Where is it?")
                onClicked: root.pathToggled()
            }

            SelectableText {
                Layout.fillWidth: true
                activeFocusOnTab: root.current
                fullText: root.row.path
                visible: root.row.pathShown
            }
        }

        PushButton {
            Accessible.description: root.row.title
            activeFocusOnTab: root.current
            text: qsTr("Show")
            onClicked: root.revealed()
        }
    }

    FocusRing {
        gap: -border.width
        innerRadius: Metrics.cardRadius
        shown: root.hasKeyboard
    }
}
