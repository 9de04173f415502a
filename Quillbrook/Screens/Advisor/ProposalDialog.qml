pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The question before something goes to the Trash; it goes away with the card that it is about.
ConfirmDialog {
    id: root

    required property ProposalState proposal

    message: proposal.confirmMessage
    title: proposal.confirmTitle

    PushButton {
        kind: PushButton.Prominent
        text: qsTr("Move to Trash")
        onClicked: {
            root.close();
            root.proposal.move();
        }
    }

    Connections {
        function onChanged() {
            root.close();
        }

        function onMoveAsked() {
            root.open();
        }

        target: root.proposal
    }
}
