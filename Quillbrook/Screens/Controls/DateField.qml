pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A day and a time of day, as the person's language writes them: typed, stepped with the arrow keys where the
// cursor stands, or chosen from a calendar. It shows `value` and asks by `picked` for another. What can't be read
// as a date goes when the field is left. `name` says what it is the date of.
InputField {
    id: root

    required property string name
    property date value: new Date()

    readonly property bool isUnderstood: DateText.isMoment(text, value)

    signal picked(date moment)

    function commit() {
        if (isUnderstood)
            take(DateText.moment(text, value));
        show();
    }

    function take(moment: date) {
        if (DateText.text(moment) !== DateText.text(value))
            picked(moment);
    }

    function show() {
        if (text !== DateText.text(value))
            text = DateText.text(value);
    }

    // The cursor stays in the part of the date that was stepped.
    function step(steps: int) {
        if (!enabled)
            return;
        const cursor = cursorPosition;
        commit();
        const part = DateText.partAt(value, cursor);
        take(DateText.stepped(value, part, steps));
        show();
        cursorPosition = DateText.startOf(value, part);
    }

    Accessible.name: name
    Accessible.onDecreaseAction: step(-1)
    Accessible.onIncreaseAction: step(1)
    Component.onCompleted: show()
    Keys.onDownPressed: event => {
        if (event.modifiers & Qt.AltModifier)
            calendar.open();
        else
            step(-1);
    }
    Keys.onUpPressed: step(1)

    implicitWidth: Metrics.dateFieldWidth
    inputMethodHints: Qt.ImhDate | Qt.ImhTime
    invalid: !isUnderstood
    rightPadding: Metrics.space12 + Metrics.symbolSize

    onEditingFinished: commit()
    onValueChanged: show()

    SymbolButton {
        id: opener

        anchors.right: parent.right
        anchors.rightMargin: Metrics.hairlineWidth
        anchors.verticalCenter: parent.verticalCenter
        // The arrow keys of the field open it too, so that the field stays one stop of the Tab key.
        activeFocusOnTab: false
        enabled: root.enabled
        focusPolicy: Qt.NoFocus
        symbol: "calendar"
        symbolSide: Metrics.symbolMedium
        text: qsTr("Choose %1 from a calendar").arg(root.name)
        onClicked: calendar.open()
    }

    DayCalendar {
        id: calendar

        name: root.name
        value: root.value
        y: root.height + Metrics.space4
        onPicked: day => root.take(DateText.onDay(root.value, day))
        onClosed: root.forceActiveFocus()
    }
}
