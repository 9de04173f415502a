pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// The days of a month to choose one from, in a small panel. The arrow keys walk the days, the page keys the months,
// Return chooses, Escape lets it be.
T.Popup {
    id: root

    required property string name
    property date value: new Date()

    /// The day that the keyboard stands on; its month is the one that is shown.
    property date current: value

    signal picked(date day)

    function walk(days: int) {
        current = DateText.daysLater(current, days);
    }

    function walkMonths(months: int) {
        current = DateText.monthsLater(current, months);
    }

    function choose(day: date) {
        close();
        picked(day);
    }

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    focus: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    margins: Metrics.space8
    padding: Metrics.space12

    onAboutToShow: current = value
    onOpened: days.forceActiveFocus(Qt.TabFocusReason)

    background: Card {
        Accessible.name: root.name
        Accessible.role: Accessible.Dialog

        SoftShadow {
            z: -1
        }
    }
    // qmllint disable deferred-property-id
    contentItem: ColumnLayout {
        // qmllint enable deferred-property-id
        spacing: Metrics.space4

        RowLayout {
            SymbolButton {
                symbol: "chevron.left"
                text: qsTr("Month before")
                onClicked: root.walkMonths(-1)
            }

            BodyText {
                Layout.fillWidth: true
                color: Theme.strong
                horizontalAlignment: Text.AlignHCenter
                semibold: true
                text: DateText.month(root.current)
            }

            SymbolButton {
                symbol: "chevron.right"
                text: qsTr("Month after")
                onClicked: root.walkMonths(1)
            }
        }

        Row {
            Repeater {
                model: 7

                CaptionText {
                    required property int index

                    Accessible.ignored: true
                    horizontalAlignment: Text.AlignHCenter
                    text: DateText.sheetColumn(index)
                    width: Metrics.controlHeight
                }
            }
        }

        Grid {
            id: days

            // The day the keys have come to: it is told anew at each step.
            Accessible.name: DateText.day(root.current)
            Accessible.role: Accessible.Grouping
            Keys.onDownPressed: root.walk(7)
            Keys.onEnterPressed: root.choose(root.current)
            Keys.onLeftPressed: root.walk(-1)
            Keys.onPressed: event => {
                const walks = new Map([[Qt.Key_PageUp, () => root.walkMonths(-1)], [Qt.Key_PageDown, () => root.walkMonths(1)], [Qt.Key_Home, () => root.walk(1 - root.current.getDate())], [Qt.Key_Space, () => root.choose(root.current)]]);
                event.accepted = walks.has(event.key);
                if (event.accepted)
                    walks.get(event.key)();
            }
            Keys.onReturnPressed: root.choose(root.current)
            Keys.onRightPressed: root.walk(1)
            Keys.onUpPressed: root.walk(-7)
            activeFocusOnTab: true
            columns: 7
            objectName: "days"

            Repeater {
                model: 42

                T.AbstractButton {
                    id: cell

                    required property int index

                    readonly property date day: DateText.sheetDay(root.current, index)
                    readonly property bool isCurrent: DateText.isSameDay(day, root.current)
                    readonly property bool isValue: DateText.isSameDay(day, root.value)
                    readonly property bool isOfTheMonth: day.getMonth() === root.current.getMonth()

                    Accessible.name: DateText.day(day)
                    Accessible.role: Accessible.Button
                    Accessible.selectable: true
                    Accessible.selected: isValue
                    Accessible.onPressAction: clicked()

                    focusPolicy: Qt.NoFocus
                    hoverEnabled: true
                    implicitHeight: Metrics.controlHeight
                    implicitWidth: Metrics.controlHeight
                    text: day.getDate()

                    onClicked: root.choose(day)

                    background: Rectangle {
                        color: cell.isValue ? Theme.accent : "transparent"
                        radius: Metrics.controlRadius

                        StateTint {
                            hovered: cell.hovered
                            pressed: cell.down
                            radius: parent.radius
                        }

                        FocusRing {
                            // On the filled day it stands out only in the colour of the ground.
                            border.color: cell.isValue ? Theme.surface : Theme.accent
                            gap: cell.isValue ? -2 * border.width : -border.width
                            shown: cell.isCurrent && days.activeFocus
                        }
                    }
                    contentItem: BodyText {
                        Accessible.ignored: true
                        color: cell.isValue ? Theme.surface : cell.isOfTheMonth ? Theme.strong : Theme.faded(Theme.label, Metrics.quietOpacity)
                        font.pointSize: Metrics.smallFont
                        horizontalAlignment: Text.AlignHCenter
                        text: cell.text
                    }
                }
            }
        }
    }
}
