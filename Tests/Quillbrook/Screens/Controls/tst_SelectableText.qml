import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "SelectableText"
    visible: true
    when: windowShown
    width: 800
    height: 300

    Component {
        id: maker

        SelectableText {
            fullText: "/home/someone/Projects/renderer/node_modules/illustrations/archive-of-last-summer.zip"
        }
    }

    function test_longTextIsElidedAsLateAsCanBe() {
        const line = createTemporaryObject(maker, root);
        const shortened = findChild(line, "shortened");
        line.width = line.naturalWidth;
        verify(!shortened.visible);
        compare(line.color, line.inkColor);

        // No more goes than the sign for it needs, and a letter.
        line.width = line.naturalWidth - 10;
        verify(shortened.visible);
        verify(shortened.truncated);
        compare(line.color.a, 0);
        verify(shortened.contentWidth <= line.width);
        verify(shortened.contentWidth > line.width - 2 * line.font.pixelSize, shortened.contentWidth + " of " + line.width);
    }

    function test_isWholeWhileTheKeyboardIsInIt() {
        const line = createTemporaryObject(maker, root, {
            width: 120
        });
        line.forceActiveFocus();
        verify(!findChild(line, "shortened").visible);
        compare(line.color, line.inkColor);
        compare(line.selectedText, line.fullText);
    }
}
