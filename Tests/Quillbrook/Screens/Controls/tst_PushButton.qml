import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "PushButton"
    visible: true
    when: windowShown
    width: 400
    height: 100

    Component {
        id: maker

        PushButton {
            text: "Rescan"
        }
    }

    SignalSpy {
        id: clicks

        signalName: "clicked"
    }

    function test_kindTellsItsWeight_data() {
        return [
            {
                tag: "plain",
                kind: PushButton.Plain,
                ink: Theme.strong,
                ground: Theme.surface
            },
            {
                tag: "prominent",
                kind: PushButton.Prominent,
                ink: Theme.surface,
                ground: Theme.accent
            },
            {
                tag: "destructive",
                kind: PushButton.Destructive,
                ink: Theme.danger,
                ground: Theme.surface
            },
            {
                tag: "link",
                kind: PushButton.Link,
                ink: Theme.accent,
                ground: Qt.rgba(0, 0, 0, 0)
            }
        ];
    }

    function test_kindTellsItsWeight(row) {
        const button = createTemporaryObject(maker, root, {
            kind: row.kind
        });
        compare(button.inkColor, row.ink);
        compare(button.background.color, row.ground);
    }

    function test_isAsWideAsItsWords() {
        const narrow = createTemporaryObject(maker, root);
        const wide = createTemporaryObject(maker, root, {
            text: "Rescan everything once more"
        });
        compare(narrow.height, 28);
        verify(wide.width > narrow.width + 100);
    }

    function test_disabledButtonIgnoresPointerAndKeys() {
        const button = createTemporaryObject(maker, root, {
            enabled: false
        });
        clicks.target = button;
        clicks.clear();
        mouseClick(button);
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Space);
        compare(clicks.count, 0);
        compare(button.opacity, Metrics.disabledOpacity);
    }

    function test_hoverIsTheSameColourAtAnotherOpacity() {
        const button = createTemporaryObject(maker, root, {
            x: 100,
            y: 40
        });
        mouseMove(root, 1, 1);
        verify(!button.hovered);
        mouseMove(button);
        verify(button.hovered);
        compare(button.background.color, Theme.surface);
    }
}
