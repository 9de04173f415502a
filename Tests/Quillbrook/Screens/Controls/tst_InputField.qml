import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "InputField"
    visible: true
    when: windowShown
    width: 400
    height: 100

    Component {
        id: maker

        InputField {
            placeholderText: "Filter"
        }
    }

    function shownTexts(field) {
        const result = [];
        for (let i = 0; i < field.children.length; ++i) {
            const child = field.children[i];
            if (child instanceof Text && child.visible)
                result.push(child.text);
        }
        return result;
    }

    function test_placeholderIsItsNameAndGoesAwayWithTheFirstLetter() {
        const field = createTemporaryObject(maker, root);
        compare(field.Accessible.name, "Filter");
        compare(shownTexts(field), ["Filter"]);
        mouseClick(field);
        keyClick(Qt.Key_A);
        compare(field.text, "a");
        compare(shownTexts(field), []);
        keyClick(Qt.Key_Backspace);
        compare(shownTexts(field), ["Filter"]);
    }

    // Of one colour over another, from 1 to 21.
    function contrast(front, back) {
        const linear = part => part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4);
        const light = part => 0.2126 * linear(part.r) + 0.7152 * linear(part.g) + 0.0722 * linear(part.b) + 0.05;
        const shown = Qt.tint(back, front);
        return Math.max(light(shown) / light(back), light(back) / light(shown));
    }

    function test_quietTextsCanBeRead() {
        const field = createTemporaryObject(maker, root);
        verify(contrast(field.placeholderTextColor, field.background.color) >= 4.5);
        verify(contrast(Theme.label, Theme.page) >= 4.5);
        const lifted = Qt.tint(Theme.page, Theme.faded(Theme.surface, Metrics.liftOpacity));
        verify(contrast(Theme.safe, lifted) >= 4.5);
        verify(contrast(Theme.safe, Theme.page) < 4.5, "the lighter ground is needed");
    }

    function test_ringShowsWhileItIsWrittenInto() {
        const field = createTemporaryObject(maker, root);
        const ring = findChild(field, "focusRing");
        verify(!ring.visible);
        mouseClick(field);
        verify(ring.visible);
        field.focus = false;
        verify(!ring.visible);
    }

    function test_symbolTakesRoomOfItsOwn() {
        const without = createTemporaryObject(maker, root);
        const withSymbol = createTemporaryObject(maker, root, {
            symbol: "magnifyingglass"
        });
        compare(withSymbol.leftPadding - without.leftPadding, Metrics.symbolSize + Metrics.space8);
    }

    function test_plainFieldHasNoGroundOfItsOwn() {
        const field = createTemporaryObject(maker, root, {
            plain: true
        });
        compare(field.background.border.width, 0);
        field.forceActiveFocus();
        verify(!findChild(field, "focusRing").visible);
    }
}
