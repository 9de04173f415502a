pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The question field under the panes.
Card {
    id: root

    required property AskBarState ask

    function submit() {
        if (ask.submit())
            field.focus = false;
        else
            field.forceActiveFocus();
    }

    implicitHeight: Metrics.askBarHeight

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space16
        anchors.rightMargin: Metrics.space8
        spacing: Metrics.space8

        Symbol {
            color: Theme.accent
            name: "sparkles"
        }

        InputField {
            id: field

            Layout.fillWidth: true
            leftPadding: 0
            objectName: "questionField"
            placeholderText: qsTr("Ask Quillbrook anything about this Mac")
            plain: true
            text: root.ask.draft
            onAccepted: root.submit()
            onTextEdited: root.ask.draft = text
        }

        PushButton {
            text: qsTr("History")
            onClicked: root.ask.openConversation()
        }

        PushButton {
            kind: PushButton.Prominent
            text: qsTr("Ask")
            onClicked: root.submit()
        }
    }

    FocusRing {
        gap: 0
        innerRadius: root.radius
        shown: field.activeFocus
    }
}
