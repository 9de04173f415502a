import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "DateField"
    visible: true
    when: windowShown
    width: 600
    height: 500

    Component {
        id: maker

        DateField {
            name: "From"
            value: new Date(2020, 5, 14, 9, 30)
            onPicked: moment => value = moment
        }
    }

    SignalSpy {
        id: picks

        signalName: "picked"
    }

    function made(properties) {
        const field = createTemporaryObject(maker, root, properties);
        picks.target = field;
        picks.clear();
        field.forceActiveFocus();
        return field;
    }

    function openCalendar(field) {
        keyClick(Qt.Key_Down, Qt.AltModifier);
        let days = null;
        tryVerify(() => days = findChild(root.Window.contentItem, "days"));
        tryVerify(() => days.activeFocus);
        return days;
    }

    function test_showsItsValueAndIsCalledByItsName() {
        const field = made();
        compare(field.Accessible.name, "From");
        compare(field.Accessible.role, Accessible.EditableText);
        compare(field.text, DateText.text(new Date(2020, 5, 14, 9, 30)));
        field.value = new Date(2022, 0, 2, 3, 4);
        compare(field.text, DateText.text(new Date(2022, 0, 2, 3, 4)));
        compare(picks.count, 0);
    }

    function test_typedDateIsTaken() {
        const field = made();
        field.text = "2021-02-03";
        keyClick(Qt.Key_Return);
        compare(picks.count, 1);
        compare(field.value, new Date(2021, 1, 3, 9, 30));
        compare(field.text, DateText.text(field.value));
    }

    function test_whatIsNoDateGoesAgain() {
        const field = made();
        const before = field.text;
        field.text = "soon";
        verify(field.invalid);
        keyClick(Qt.Key_Return);
        compare(field.text, before);
        verify(!field.invalid);
        compare(picks.count, 0);
    }

    function test_arrowKeysStepThePartAtTheCursor() {
        const field = made();
        const part = DateText.partAt(field.value, 0);
        field.cursorPosition = 0;
        keyClick(Qt.Key_Up);
        compare(field.value, DateText.stepped(new Date(2020, 5, 14, 9, 30), part, 1));
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        compare(field.value, DateText.stepped(new Date(2020, 5, 14, 9, 30), part, -1));
        compare(DateText.partAt(field.value, field.cursorPosition), part);
        compare(picks.count, 3);
    }

    function test_dayIsChosenFromTheCalendarByKeys() {
        const field = made();
        const days = openCalendar(field);
        compare(days.Accessible.name, DateText.day(new Date(2020, 5, 14)));
        for (const key of [Qt.Key_Right, Qt.Key_Down, Qt.Key_Left, Qt.Key_PageDown, Qt.Key_PageDown, Qt.Key_Up])
            keyClick(key);
        compare(days.Accessible.name, DateText.day(new Date(2020, 7, 14)));
        keyClick(Qt.Key_Return);
        compare(field.value, new Date(2020, 7, 14, 9, 30));
        tryVerify(() => field.activeFocus);
    }

    function test_shorterMonthsHaveTheirLastDay() {
        const field = made({
            value: new Date(2021, 0, 31, 9, 30)
        });
        openCalendar(field);
        keyClick(Qt.Key_PageDown);
        keyClick(Qt.Key_Space);
        compare(field.value, new Date(2021, 1, 28, 9, 30));
    }

    function test_escapeLetsItBe() {
        const field = made();
        openCalendar(field);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Escape);
        tryVerify(() => field.activeFocus);
        compare(picks.count, 0);
    }

    function test_everyDayOfTheMonthStandsInItsColumn() {
        const field = made();
        const days = openCalendar(field);
        const cells = Array.from(days.children).filter(cell => cell.text !== undefined);
        compare(cells.length, 42);
        cells.forEach((cell, index) => compare(cell.day.getDay(), (Qt.locale().firstDayOfWeek + index) % 7));
        compare(cells.filter(cell => cell.day.getMonth() === 5).length, 30);
        const first = cells.find(cell => cell.day.getMonth() === 5);
        compare(first.text, "1");
        mouseClick(first);
        compare(field.value, new Date(2020, 5, 1, 9, 30));
    }
}
