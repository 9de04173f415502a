pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Past answers: who answers, the conversation, and the field to go on with it.
ColumnLayout {
    id: root

    required property AdvisorState advisor

    // While one writes, too: the field has no use for these.
    Keys.onPressed: event => {
        const directions = new Map([[Qt.Key_PageUp, -1], [Qt.Key_PageDown, 1]]);
        event.accepted = directions.has(event.key);
        if (event.accepted)
            conversation.turnPage(directions.get(event.key));
    }

    spacing: 0

    AdvisorBanner {
        Layout.fillWidth: true
        advisor: root.advisor
    }

    Hairline {
        Layout.fillWidth: true
    }

    Conversation {
        id: conversation

        Layout.fillHeight: true
        Layout.fillWidth: true
        advisor: root.advisor
        onKeyboardFreed: field.forceActiveFocus()
    }

    Hairline {
        Layout.fillWidth: true
    }

    RowLayout {
        Layout.bottomMargin: Metrics.space12
        Layout.leftMargin: Metrics.paneInset
        Layout.rightMargin: Metrics.paneInset
        Layout.topMargin: Metrics.space12
        spacing: Metrics.space8

        InputField {
            id: field

            Layout.fillWidth: true
            implicitHeight: Metrics.prominentHeight
            objectName: "composer"
            placeholderText: qsTr("Ask about what was found")
            text: root.advisor.draft
            onAccepted: root.advisor.submit()
            onTextEdited: root.advisor.draft = text
        }

        PushButton {
            enabled: root.advisor.canAsk
            implicitHeight: Metrics.prominentHeight
            kind: PushButton.Prominent
            text: qsTr("Ask")
            onClicked: root.advisor.submit()
        }
    }

    Connections {
        function onKeyboardOffered() {
            field.forceActiveFocus();
        }

        // The linter loses what a state in a namespace derives from.
        target: root.advisor // qmllint disable
    }

    ProposalDialog {
        proposal: root.advisor.proposal
    }
}
