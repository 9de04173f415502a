pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// Every shared control in every state, to be looked at and to be walked through by tests. A state that only a
// pointer or the keyboard brings about is shown by the parts that draw it.
Rectangle {
    id: root

    color: Theme.page
    implicitHeight: Metrics.windowHeight + 2 * Metrics.space24
    implicitWidth: Metrics.windowWidth + Metrics.columnWidth + 4 * Metrics.space24

    component Group: ColumnLayout {
        required property string label

        Layout.alignment: Qt.AlignTop
        spacing: Metrics.space12

        SectionLabel {
            text: parent.label
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.margins: Metrics.space24
        spacing: Metrics.space24 * 2

        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            spacing: Metrics.space24

            Group {
                label: "Buttons"

                Repeater {
                    model: [
                        {
                            kind: PushButton.Plain,
                            name: "Plain"
                        },
                        {
                            kind: PushButton.Prominent,
                            name: "Prominent"
                        },
                        {
                            kind: PushButton.Destructive,
                            name: "Destructive"
                        },
                        {
                            kind: PushButton.Link,
                            name: "Link"
                        }
                    ]

                    RowLayout {
                        id: buttonRow

                        required property var modelData

                        spacing: Metrics.space12

                        PushButton {
                            kind: buttonRow.modelData.kind
                            text: buttonRow.modelData.name
                        }

                        PushButton {
                            kind: buttonRow.modelData.kind
                            symbol: "trash"
                            text: buttonRow.modelData.name + " with symbol"
                        }

                        PushButton {
                            down: true
                            kind: buttonRow.modelData.kind
                            text: buttonRow.modelData.name + " pressed"
                        }

                        PushButton {
                            enabled: false
                            kind: buttonRow.modelData.kind
                            text: buttonRow.modelData.name + " disabled"
                        }
                    }
                }

                RowLayout {
                    spacing: Metrics.space12

                    PushButton {
                        implicitHeight: Metrics.prominentHeight
                        kind: PushButton.Prominent
                        text: "The screen's own"
                    }

                    PushButton {
                        id: helped

                        Accessible.description: help.text
                        text: "With help"

                        HelpTip {
                            id: help

                            shown: helped.hovered || helped.visualFocus
                            text: "What pressing it means, in a sentence."
                        }
                    }

                    SymbolButton {
                        symbol: "xmark"
                        text: "Close"
                    }

                    SymbolButton {
                        enabled: false
                        symbol: "arrow.clockwise"
                        text: "Again"
                    }
                }
            }

            Group {
                label: "Choices"

                RowLayout {
                    spacing: Metrics.space16

                    TickBox {
                        text: "Off"
                    }

                    TickBox {
                        checked: true
                        text: "On"
                    }

                    TickBox {
                        checked: true
                        enabled: false
                        text: "On, disabled"
                    }

                    TickBox {
                        enabled: false
                        text: "Off, disabled"
                    }

                    TickBox {
                        checked: true
                        name: "Without words"
                    }
                }

                RowLayout {
                    spacing: Metrics.space16

                    ToggleSwitch {
                        text: "Switch off"
                    }

                    ToggleSwitch {
                        checked: true
                        text: "Switch on"
                    }

                    ToggleSwitch {
                        checked: true
                        enabled: false
                        text: "Switch on, disabled"
                    }

                    ToggleSwitch {
                        name: "Switch without words"
                    }
                }
            }

            Group {
                label: "Fields"

                RowLayout {
                    spacing: Metrics.space12

                    InputField {
                        placeholderText: "Filter"
                        symbol: "magnifyingglass"
                    }

                    InputField {
                        placeholderText: "Name"
                        text: "renderer"
                    }

                    InputField {
                        enabled: false
                        placeholderText: "Disabled field"
                    }
                }
            }

            Group {
                label: "Text"

                FigureText {
                    text: "48.2 GB"
                }

                HeadingText {
                    text: "A heading of a screen"
                }

                BodyText {
                    text: "Running text, as it stands in a row"
                }

                BodyText {
                    semibold: true
                    text: "The same, semibold"
                }

                CaptionText {
                    text: "A caption: created over a year ago · last used today"
                }

                BodyText {
                    Layout.preferredWidth: Metrics.dialogWidth / 2
                    elide: Text.ElideMiddle
                    text: "/home/ann/Projects/renderer/build/a path that is much too long for its room"
                }
            }
        }

        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            spacing: Metrics.space24

            Group {
                Layout.fillWidth: true
                label: "Banners"

                Banner {
                    Layout.fillWidth: true
                    symbol: "exclamationmark.shield.fill"
                    text: "What it means, in as many words as that takes, over more than one line where the card is narrow."
                    tinted: true
                    title: "Something to be careful about"
                    tone: Theme.careful
                }

                Banner {
                    Layout.fillWidth: true
                    note: "A note on what comes of it."
                    symbol: "trash"
                    text: "What it means, in a few words."
                    title: "Something that can be done"

                    PushButton {
                        text: "Do it"
                    }

                    PushButton {
                        text: "Rather not"
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: "Rows"

                Card {
                    Layout.fillWidth: true
                    implicitHeight: rows.implicitHeight

                    Column {
                        id: rows

                        width: parent.width

                        ListRow {
                            activeFocusOnTab: true
                            text: "A row"
                            width: parent.width

                            contentItem: BodyText {
                                text: "A row"
                            }
                        }

                        Hairline {
                            width: parent.width
                        }

                        ListRow {
                            activeFocusOnTab: true
                            selected: true
                            text: "A row that is selected"
                            width: parent.width

                            contentItem: BodyText {
                                text: "A row that is selected"
                            }
                        }

                        Hairline {
                            width: parent.width
                        }

                        ListRow {
                            activeFocusOnTab: true
                            enabled: false
                            text: "A row that is disabled"
                            width: parent.width

                            contentItem: BodyText {
                                text: "A row that is disabled"
                            }
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: "Progress"

                Repeater {
                    model: [0, 0.31, 1]

                    ProgressLine {
                        required property real modelData

                        Layout.fillWidth: true
                        value: modelData
                    }
                }

                ProgressLine {
                    Layout.fillWidth: true
                    implicitHeight: Metrics.gaugeBarHeight
                    tone: Theme.danger
                    value: 0.95
                }
            }

            Group {
                label: "Focus, hover, press"

                RowLayout {
                    spacing: Metrics.space16

                    Repeater {
                        model: [
                            {
                                focused: true
                            },
                            {
                                hovered: true
                            },
                            {
                                pressed: true
                            }
                        ]

                        Card {
                            id: sample

                            required property var modelData

                            implicitHeight: Metrics.controlHeight
                            implicitWidth: Metrics.sizeColumnWidth
                            radius: Metrics.controlRadius

                            StateTint {
                                hovered: sample.modelData.hovered ?? false
                                pressed: sample.modelData.pressed ?? false
                                radius: parent.radius
                            }

                            FocusRing {
                                shown: sample.modelData.focused ?? false
                            }
                        }
                    }
                }
            }

            Group {
                label: "Sheets"

                RowLayout {
                    spacing: Metrics.space12

                    PushButton {
                        text: "Ask something"
                        onClicked: question.open()
                    }

                    PushButton {
                        text: "Open a sheet"
                        onClicked: sheet.open()
                    }
                }
            }

            Item {
                Layout.fillHeight: true
                Layout.fillWidth: true

                ListView {
                    id: longList

                    anchors.fill: parent
                    clip: true
                    model: 40
                    T.ScrollBar.vertical: SlimScrollBar {}

                    delegate: BodyText {
                        required property int index

                        text: "Line " + index + " of a list that scrolls"
                    }
                }
            }
        }

        ColumnLayout {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: false
            Layout.maximumWidth: Metrics.columnWidth
            Layout.minimumWidth: Metrics.columnWidth
            spacing: Metrics.space24

            Group {
                label: "Pickers"

                RowLayout {
                    spacing: Metrics.space8

                    TabRow {
                        name: "Which list"
                        objectName: "tabs"
                        options: ["Apps on this Mac", "Leftovers"]
                        onPicked: index => current = index
                    }

                    SegmentedPicker {
                        name: "How often"
                        objectName: "picker"
                        options: ["Every time", "Just once", "Never"]
                        onPicked: index => current = index
                    }

                    SegmentedPicker {
                        enabled: false
                        name: "Picker, disabled"
                        options: ["On", "Off"]
                    }
                }

                StepSlider {
                    Layout.fillWidth: true
                    from: 70
                    label: "Clear it when the disk reaches " + value + "%"
                    objectName: "slider"
                    to: 99
                    value: 96
                }

                StepSlider {
                    Layout.fillWidth: true
                    enabled: false
                    from: 70
                    label: "Slider, disabled"
                    to: 99
                    value: 80
                }
            }

            Group {
                Layout.fillWidth: true
                label: "Switch rows"

                Card {
                    Layout.fillWidth: true
                    implicitHeight: switches.implicitHeight

                    Column {
                        id: switches

                        width: parent.width

                        SwitchRow {
                            caption: "1 item · when the disk is 90% full"
                            note: "Would clear 2.9 GB now."
                            objectName: "switchRow"
                            on: false
                            size: "2.9 GB"
                            text: "Package and build caches. Each one refetches what it needs next time you build."
                            title: "Keep build tools in check"
                            width: parent.width
                            onAsked: wanted => on = wanted
                        }

                        SwitchRow {
                            caption: "Fired 3× · last 2 days ago"
                            divided: true
                            on: true
                            text: "When the disk is 95% full, clear it · just once"
                            title: "Leftovers from building apps"
                            width: parent.width

                            PushButton {
                                text: "Remove"
                            }
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: "Progress rows"

                Card {
                    Layout.fillWidth: true
                    implicitHeight: copies.implicitHeight

                    Column {
                        id: copies

                        width: parent.width

                        ProgressRow {
                            detail: "Created 7 months ago · last used 2 months ago"
                            objectName: "runningRow"
                            progress: 0.337
                            progressText: "6.2 GB of 18.4 GB · 104 MB/s"
                            running: true
                            size: "18.4 GB"
                            title: "Downloaded AI models"
                            width: parent.width
                        }

                        ProgressRow {
                            action: "Move"
                            actionEnabled: false
                            detail: "Created over a year ago · last used 3 months ago"
                            divided: true
                            size: "1.8 GB"
                            title: "Test Android phones"
                            width: parent.width
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: "Chips"

                ChipFlow {
                    Layout.fillWidth: true
                    name: "Questions"
                    objectName: "chips"
                    texts: ["What is using the most space?", "Is it safe to clear caches?", "How do I get 10 GB back?", "What changed?"]
                }
            }

            Group {
                label: "Dates"

                RowLayout {
                    spacing: Metrics.space20

                    DateField {
                        name: "From"
                        objectName: "date"
                        value: new Date(2020, 5, 14, 9, 30)
                        onPicked: moment => value = moment
                    }

                    DateField {
                        enabled: false
                        name: "Date, disabled"
                        value: new Date(2022, 5, 14, 9, 30)
                    }
                }
            }
        }
    }

    ConfirmDialog {
        id: question

        message: "What happens then, and that it can be put back."
        objectName: "question"
        title: "Move renderer to the Trash?"

        PushButton {
            kind: PushButton.Prominent
            text: "Move to Trash"
            onClicked: question.close()
        }

        PushButton {
            kind: PushButton.Destructive
            text: "Delete permanently"
            onClicked: question.close()
        }
    }

    Sheet {
        id: sheet

        objectName: "sheet"
        title: "A sheet"

        contentItem: ColumnLayout {
            HeadingText {
                Layout.margins: Metrics.space20
                text: "A sheet"
            }

            PushButton {
                Layout.margins: Metrics.space20
                focus: true
                text: "Close the sheet"
                onClicked: sheet.close()
            }
        }
    }
}
