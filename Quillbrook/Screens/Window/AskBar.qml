pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The question field under the panes, and questions to try above it until the first one is asked.
ColumnLayout {
    id: root

    required property AskBarState ask

    function submit() {
        if (ask.submit())
            field.focus = false;
        else
            field.forceActiveFocus();
    }

    spacing: Metrics.space8

    RowLayout {
        spacing: Metrics.space12
        visible: root.ask.questions.length > 0

        SectionLabel {
            text: qsTr("TRY")
        }

        ChipFlow {
            Layout.fillWidth: true
            name: qsTr("Questions to try")
            spacing: Metrics.chipGap
            texts: root.ask.questions
            onChosen: index => root.ask.tryQuestion(index)
        }
    }

    Card {
        id: card

        Layout.fillWidth: true
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
                placeholderText: root.ask.prompt
                plain: true
                text: root.ask.draft
                onAccepted: root.submit()
                onActiveFocusChanged: {
                    if (activeFocus)
                        root.ask.focusIn();
                }
                onTextEdited: root.ask.draft = text
            }

            PushButton {
                text: qsTr("History")
                visible: root.ask.hasHistory
                onClicked: root.ask.openConversation()
            }

            PushButton {
                enabled: root.ask.canAsk
                kind: PushButton.Prominent
                text: qsTr("Ask")
                onClicked: root.submit()
            }
        }

        FocusRing {
            gap: 0
            innerRadius: card.radius
            shown: field.activeFocus
        }
    }
}
