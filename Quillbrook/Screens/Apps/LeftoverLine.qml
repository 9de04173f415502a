pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Something that may go: its tick, or a lock where there is none; what it is, and what speaks for it.
RowLayout {
    id: root

    required property leftoverRow row
    /// Whether its controls are stops of the Tab key.
    property bool holdsKeyboard: true
    property bool canBeTicked: true

    signal evidenceToggled
    signal toggled

    spacing: Metrics.space12

    Item {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: Metrics.space4 / 2
        implicitHeight: Metrics.tickSize
        implicitWidth: Metrics.tickSize

        TickBox {
            activeFocusOnTab: root.holdsKeyboard || activeFocus
            checked: root.row.isTicked
            enabled: root.canBeTicked
            name: root.row.title
            visible: !root.row.isLocked
            onToggled: {
                root.toggled();
                // A click has put its own answer in the binding's place.
                checked = Qt.binding(() => root.row.isTicked);
            }
        }

        Symbol {
            Accessible.name: qsTr("Locked")
            Accessible.role: Accessible.Graphic
            anchors.fill: parent
            color: Theme.label
            name: "lock.fill"
            visible: root.row.isLocked
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Metrics.space4 / 2

        RowLayout {
            spacing: Metrics.space8

            BodyText {
                Layout.fillWidth: true
                // A layout rounds down, and half a pixel too little would cut the words.
                Layout.maximumWidth: Math.ceil(implicitWidth) + 1
                color: Theme.strong
                semibold: true
                text: root.row.title
            }

            CaptionText {
                Layout.fillWidth: true
                // Of a long name the end goes, not the age.
                Layout.minimumWidth: Math.ceil(implicitWidth) + 1
                text: root.row.note
            }
        }

        SelectableText {
            Layout.fillWidth: true
            activeFocusOnTab: root.holdsKeyboard || activeFocus
            fullText: root.row.path
        }

        BodyText {
            Layout.fillWidth: true
            font.pointSize: Metrics.smallFont
            text: root.row.what
            visible: text !== "" && !root.row.isLocked
            wrapMode: Text.Wrap
        }

        Disclosure {
            Accessible.description: root.row.title
            activeFocusOnTab: root.holdsKeyboard || activeFocus
            open: root.row.isOpen
            text: qsTr("Why?")
            onClicked: root.evidenceToggled()
        }

        SelectableLines {
            Layout.fillWidth: true
            activeFocusOnTab: root.holdsKeyboard || activeFocus
            text: root.row.evidence
            visible: root.row.isOpen
        }
    }

    BodyText {
        Layout.alignment: Qt.AlignTop
        color: root.row.isLocked ? Theme.label : Theme.accent
        semibold: true
        text: root.row.size
    }
}
