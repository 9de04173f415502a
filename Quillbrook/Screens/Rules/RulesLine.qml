import QtQuick
import Quillbrook

// One line of the screen "Automatic rules", drawn as what it is.
// Not `ComponentBehavior: Bound`: a Loader of Qt 6.4 can't create bound components.
Item {
    id: root

    required property int index
    required property int kind
    required property rulesRow row
    required property RulesState rules

    readonly property bool acts: kind === RulesLines.Preset || kind === RulesLines.Rule || kind === RulesLines.Suggestion
    readonly property bool current: ListView.isCurrentItem

    // Something is done here, by the pointer as well: the keyboard goes on from this line.
    signal touched

    // What can't be acted on speaks for itself.
    Accessible.description: row.spoken
    Accessible.ignored: !acts
    Accessible.name: row.title
    Accessible.role: Accessible.ListItem
    Keys.onSpacePressed: rules.act(index)
    activeFocusOnTab: current && acts
    implicitHeight: content.implicitHeight

    Loader {
        id: content

        sourceComponent: {
            switch (root.kind) {
            case RulesLines.Heading:
                return heading;
            case RulesLines.Guarantee:
                return guarantee;
            case RulesLines.Section:
                return section;
            case RulesLines.Preset:
                return preset;
            case RulesLines.Rule:
                return rule;
            case RulesLines.Suggestion:
                return suggestion;
            case RulesLines.LogLine:
                return logLine;
            default:
                return sentence;
            }
        }
        width: root.width
    }

    // qmllint disable unqualified
    Component {
        id: heading

        RulesHeading {
            row: root.row
        }
    }

    Component {
        id: guarantee

        Card {
            Accessible.name: root.row.text
            Accessible.role: Accessible.Note
            implicitHeight: words.implicitHeight + 2 * Metrics.space12

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.safe
                height: Metrics.symbolLarge
                name: "arrow.uturn.backward"
                width: Metrics.symbolLarge
                x: Metrics.space16
            }

            BodyText {
                id: words

                Accessible.ignored: true
                color: Theme.strong
                font.pointSize: Metrics.smallFont
                lineHeight: Metrics.textLine
                lineHeightMode: Text.FixedHeight
                text: root.row.text
                width: parent.width - x - Metrics.space16
                wrapMode: Text.Wrap
                x: Metrics.space16 + Metrics.symbolLarge + Metrics.space12
                y: Metrics.space12
            }
        }
    }

    Component {
        id: section

        Item {
            Accessible.name: root.row.title
            Accessible.role: Accessible.Heading
            implicitHeight: Metrics.wardenHeadingHeight

            SectionLabel {
                Accessible.ignored: true
                anchors.bottom: parent.bottom
                anchors.bottomMargin: Metrics.space8
                text: root.row.title
            }
        }
    }

    Component {
        id: sentence

        CardSlice {
            first: root.row.first
            implicitHeight: line.implicitHeight + 2 * Metrics.space12
            last: root.row.last

            BodyText {
                id: line

                color: root.row.tone
                font.pointSize: Metrics.smallFont
                text: root.row.title
                width: parent.width - 2 * x
                wrapMode: Text.Wrap
                x: Metrics.space16
                y: Metrics.space12
            }
        }
    }

    Component {
        id: preset

        CardSlice {
            divided: false
            first: root.row.first
            implicitHeight: presetWords.implicitHeight
            last: root.row.last

            SwitchRow {
                id: presetWords

                Accessible.ignored: true
                anchors.left: parent.left
                anchors.right: parent.right
                caption: root.row.caption
                divided: !root.row.first
                note: root.row.note
                noteTone: root.row.tone
                on: root.row.on
                reachable: root.current
                size: root.row.size
                text: root.row.text
                title: root.row.title
                onAsked: wanted => {
                    root.touched();
                    root.rules.setOn(root.index, wanted);
                }
            }
        }
    }

    Component {
        id: rule

        CardSlice {
            divided: false
            first: root.row.first
            implicitHeight: ruleWords.implicitHeight
            last: root.row.last

            SwitchRow {
                id: ruleWords

                Accessible.ignored: true
                anchors.left: parent.left
                anchors.right: parent.right
                caption: root.row.caption
                divided: !root.row.first
                on: root.row.on
                reachable: root.current
                text: root.row.text
                title: root.row.title
                onAsked: wanted => {
                    root.touched();
                    root.rules.setOn(root.index, wanted);
                }

                PushButton {
                    Accessible.description: root.row.title
                    activeFocusOnTab: root.current
                    text: qsTr("Remove")
                    onClicked: {
                        root.touched();
                        root.rules.remove(root.index);
                    }
                }
            }
        }
    }

    Component {
        id: suggestion

        CardSlice {
            first: root.row.first
            implicitHeight: suggestionWords.implicitHeight
            last: root.row.last

            SuggestionRow {
                id: suggestionWords

                anchors.left: parent.left
                anchors.right: parent.right
                current: root.current
                row: root.row
                onAutomated: {
                    root.touched();
                    root.rules.automate(root.index);
                }
            }
        }
    }

    Component {
        id: logLine

        CardSlice {
            readonly property int above: root.row.first ? Metrics.space12 : Metrics.space4 / 2
            readonly property int below: root.row.last ? Metrics.space12 : Metrics.space4 / 2

            divided: false
            first: root.row.first
            implicitHeight: above + Math.max(Metrics.captionLine, logText.implicitHeight) + below
            last: root.row.last

            SelectableLines {
                id: logText

                text: root.row.title
                width: parent.width - 2 * x
                x: Metrics.space16
                y: parent.above
            }
        }
    }
    // qmllint enable unqualified

    FocusRing {
        gap: -border.width
        innerRadius: Metrics.cardRadius
        shown: root.activeFocus
    }
}
