pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What stands below the last message: before the first what a model is shown, then a card to choose from, or else
// what can be pressed, and that an answer is awaited.
Item {
    id: root

    required property AdvisorState advisor

    height: column.implicitHeight

    ColumnLayout {
        id: column

        spacing: Metrics.space12
        width: parent.width

        Primer {
            Layout.fillWidth: true
            advisor: root.advisor
            visible: root.advisor.isEmpty
        }

        ProposalCard {
            Layout.fillWidth: true
            Layout.maximumWidth: Metrics.proposalWidth
            proposal: root.advisor.proposal
            visible: proposal.present
        }

        ChipFlow {
            Layout.fillWidth: true
            name: qsTr("Suggestions")
            spacing: Metrics.chipGap
            texts: root.advisor.suggestions
            visible: !root.advisor.proposal.present && root.advisor.suggestions.length > 0
            onChosen: index => root.advisor.press(index)
        }

        AlsoConsider {
            Layout.fillWidth: true
            text: root.advisor.hint
            visible: !root.advisor.proposal.present && root.advisor.hint !== ""
            onClearAsked: root.advisor.clearHint()
        }

        RowLayout {
            spacing: Metrics.space8
            visible: root.advisor.thinking

            Spinner {
                running: root.advisor.thinking
            }

            CaptionText {
                text: qsTr("thinking on-device…")
            }

            PushButton {
                kind: PushButton.Link
                text: qsTr("Stop")
                onClicked: root.advisor.stop()
            }
        }
    }
}
