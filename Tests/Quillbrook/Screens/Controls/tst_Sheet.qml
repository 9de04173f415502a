import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "Sheet"
    visible: true
    when: windowShown
    width: 800
    height: 600

    Component {
        id: behindMaker

        PushButton {
            text: "Behind"
        }
    }

    Component {
        id: dialogMaker

        ConfirmDialog {
            id: dialog

            message: "It can be put back."
            title: "Move it to the Trash?"

            PushButton {
                kind: PushButton.Destructive
                objectName: "destructive"
                text: "Delete permanently"
                onClicked: dialog.close()
            }
        }
    }

    Component {
        id: wordyMaker

        ConfirmDialog {
            id: wordy

            message: "It can be put back."
            title: "Move it to the Trash?"

            PushButton {
                objectName: "longest"
                text: "Move twenty-two thousand items to the Trash"
                onClicked: wordy.close()
            }

            PushButton {
                text: "Delete all of them permanently"
                onClicked: wordy.close()
            }
        }
    }

    SignalSpy {
        id: cancelled

        signalName: "cancelled"
    }

    SignalSpy {
        id: clicks

        signalName: "clicked"
    }

    function opened() {
        const dialog = createTemporaryObject(dialogMaker, root);
        cancelled.target = dialog;
        cancelled.clear();
        dialog.open();
        tryCompare(dialog, "opened", true);
        return dialog;
    }

    function test_standsInTheMiddleAndFitsItsWords() {
        const dialog = opened();
        compare(dialog.width, Metrics.dialogWidth);
        compare(dialog.x, Math.round((root.Window.width - dialog.width) / 2));
        verify(dialog.height > 100);
        verify(dialog.height < 300);
    }

    // On either side of the buttons is the room that the words above have, however long those on them are.
    function test_keepsItsMarginsBesideItsButtons() {
        const dialog = createTemporaryObject(wordyMaker, root);
        dialog.open();
        tryCompare(dialog, "opened", true);
        verify(dialog.width > Metrics.dialogWidth);
        const longest = findChild(dialog.contentItem, "longest");
        const room = dialog.width - longest.mapToItem(dialog.contentItem, longest.width, 0).x;
        fuzzyCompare(room, Metrics.space20, 1);
        const cancel = findChild(dialog.contentItem, "cancelButton");
        verify(cancel.mapToItem(dialog.contentItem, 0, 0).x >= Metrics.space20);
    }

    function test_isCalledByItsTitle() {
        const dialog = opened();
        compare(dialog.background.Accessible.name, "Move it to the Trash?");
        compare(dialog.background.Accessible.role, Accessible.Dialog);
    }

    function test_carelessReturnDoesNoHarm() {
        const dialog = opened();
        const destructive = findChild(dialog.contentItem, "destructive");
        verify(destructive);
        clicks.target = destructive;
        clicks.clear();
        verify(findChild(dialog.contentItem, "cancelButton").activeFocus);
        keyClick(Qt.Key_Return);
        tryCompare(dialog, "opened", false);
        compare(clicks.count, 0);
        compare(cancelled.count, 1);
    }

    function test_whatIsBehindCanNotBeReached() {
        const behind = createTemporaryObject(behindMaker, root);
        const dialog = opened();
        clicks.target = behind;
        clicks.clear();
        mouseClick(behind);
        compare(clicks.count, 0);
        for (let i = 0; i < 4; ++i) {
            keyClick(Qt.Key_Tab);
            verify(!behind.activeFocus);
        }
        keyClick(Qt.Key_Escape);
        tryCompare(dialog, "opened", false);
        tryCompare(dialog, "visible", false);
        mouseClick(behind);
        compare(clicks.count, 1);
    }

    function test_theKeyboardGoesBackToWhereItWas_data() {
        return [
            {
                tag: "with its ring",
                reason: Qt.TabFocusReason,
                ring: true
            },
            {
                tag: "without one",
                reason: Qt.MouseFocusReason,
                ring: false
            }
        ];
    }

    function test_theKeyboardGoesBackToWhereItWas(row) {
        const behind = createTemporaryObject(behindMaker, root);
        behind.forceActiveFocus(row.reason);
        const dialog = opened();
        const cancel = findChild(dialog.contentItem, "cancelButton");
        tryCompare(cancel, "activeFocus", true);
        compare(cancel.visualFocus, row.ring);
        keyClick(Qt.Key_Escape);
        tryCompare(behind, "activeFocus", true);
        compare(behind.visualFocus, row.ring);
    }

    // As a question that follows from the answer does.
    function test_whoTookTheKeyboardMeanwhileKeepsIt() {
        const before = createTemporaryObject(behindMaker, root);
        const after = createTemporaryObject(behindMaker, root);
        before.forceActiveFocus(Qt.TabFocusReason);
        const dialog = opened();
        dialog.closed.connect(() => verify(after.activeFocus));
        dialog.close();
        after.forceActiveFocus(Qt.TabFocusReason);
        tryCompare(dialog, "visible", false);
        verify(after.activeFocus);
    }

    function test_escapeAsksForNothing() {
        const dialog = opened();
        const destructive = findChild(dialog.contentItem, "destructive");
        clicks.target = destructive;
        clicks.clear();
        destructive.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Escape);
        tryCompare(dialog, "opened", false);
        compare(clicks.count, 0);
    }
}
