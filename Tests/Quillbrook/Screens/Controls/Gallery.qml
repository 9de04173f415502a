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
                label: qsTr("Buttons")

                Repeater {
                    model: [
                        {
                            kind: PushButton.Plain,
                            name: qsTr("Plain")
                        },
                        {
                            kind: PushButton.Prominent,
                            name: qsTr("Prominent")
                        },
                        {
                            kind: PushButton.Destructive,
                            name: qsTr("Destructive")
                        },
                        {
                            kind: PushButton.Link,
                            name: qsTr("Link")
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
                            text: buttonRow.modelData.name + qsTr(" with symbol")
                        }

                        PushButton {
                            down: true
                            kind: buttonRow.modelData.kind
                            text: buttonRow.modelData.name + qsTr(" pressed")
                        }

                        PushButton {
                            enabled: false
                            kind: buttonRow.modelData.kind
                            text: buttonRow.modelData.name + qsTr(" disabled")
                        }
                    }
                }

                RowLayout {
                    spacing: Metrics.space12

                    PushButton {
                        implicitHeight: Metrics.prominentHeight
                        kind: PushButton.Prominent
                        text: qsTr("The screen's own")
                    }

                    PushButton {
                        id: helped

                        Accessible.description: help.text
                        text: qsTr("With help")

                        HelpTip {
                            id: help

                            shown: helped.hovered || helped.visualFocus
                            text: qsTr("What pressing it means, in a sentence.")
                        }
                    }

                    SymbolButton {
                        symbol: "xmark"
                        text: "Close"
                    }

                    SymbolButton {
                        enabled: false
                        symbol: "arrow.clockwise"
                        text: qsTr("Again")
                    }
                }
            }

            Group {
                label: qsTr("Choices")

                RowLayout {
                    spacing: Metrics.space16

                    TickBox {
                        text: qsTr("Off")
                    }

                    TickBox {
                        checked: true
                        text: qsTr("On")
                    }

                    TickBox {
                        checked: true
                        enabled: false
                        text: qsTr("On, disabled")
                    }

                    TickBox {
                        enabled: false
                        text: qsTr("Off, disabled")
                    }

                    TickBox {
                        checked: true
                        name: qsTr("Without words")
                    }
                }

                RowLayout {
                    spacing: Metrics.space16

                    ToggleSwitch {
                        text: qsTr("Switch off")
                    }

                    ToggleSwitch {
                        checked: true
                        text: qsTr("Switch on")
                    }

                    ToggleSwitch {
                        checked: true
                        enabled: false
                        text: qsTr("Switch on, disabled")
                    }

                    ToggleSwitch {
                        name: qsTr("Switch without words")
                    }
                }
            }

            Group {
                label: qsTr("Fields")

                RowLayout {
                    spacing: Metrics.space12

                    InputField {
                        placeholderText: qsTr("Filter")
                        symbol: "magnifyingglass"
                    }

                    InputField {
                        placeholderText: qsTr("Name")
                        text: "renderer"
                    }

                    InputField {
                        enabled: false
                        placeholderText: qsTr("Disabled field")
                    }
                }
            }

            Group {
                label: qsTr("Text")

                FigureText {
                    text: qsTr("48.2 GB")
                }

                HeadingText {
                    text: qsTr("A heading of a screen")
                }

                BodyText {
                    text: qsTr("Running text, as it stands in a row")
                }

                BodyText {
                    semibold: true
                    text: qsTr("The same, semibold")
                }

                CaptionText {
                    text: qsTr("A caption: created over a year ago · last used today")
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
                label: qsTr("Banners")

                Banner {
                    Layout.fillWidth: true
                    symbol: "exclamationmark.shield.fill"
                    text: qsTr("What it means, in as many words as that takes, over more than one line where the card is narrow.")
                    tinted: true
                    title: qsTr("Something to be careful about")
                    tone: Theme.careful
                }

                Banner {
                    Layout.fillWidth: true
                    note: qsTr("A note on what comes of it.")
                    symbol: "trash"
                    text: qsTr("What it means, in a few words.")
                    title: qsTr("Something that can be done")

                    PushButton {
                        text: qsTr("Do it")
                    }

                    PushButton {
                        text: qsTr("Rather not")
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: qsTr("Rows")

                Card {
                    Layout.fillWidth: true
                    implicitHeight: rows.implicitHeight

                    Column {
                        id: rows

                        width: parent.width

                        ListRow {
                            activeFocusOnTab: true
                            text: qsTr("A row")
                            width: parent.width

                            contentItem: BodyText {
                                text: qsTr("A row")
                            }
                        }

                        Hairline {
                            width: parent.width
                        }

                        ListRow {
                            activeFocusOnTab: true
                            selected: true
                            text: qsTr("A row that is selected")
                            width: parent.width

                            contentItem: BodyText {
                                text: qsTr("A row that is selected")
                            }
                        }

                        Hairline {
                            width: parent.width
                        }

                        ListRow {
                            activeFocusOnTab: true
                            enabled: false
                            text: qsTr("A row that is disabled")
                            width: parent.width

                            contentItem: BodyText {
                                text: qsTr("A row that is disabled")
                            }
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: qsTr("Progress")

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
                label: qsTr("Focus, hover, press")

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
                label: qsTr("Sheets")

                RowLayout {
                    spacing: Metrics.space12

                    PushButton {
                        text: qsTr("Ask something")
                        onClicked: question.open()
                    }

                    PushButton {
                        text: qsTr("Open a sheet")
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

                        text: qsTr("Line ") + index + qsTr(" of a list that scrolls")
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
                label: qsTr("Pickers")

                RowLayout {
                    spacing: Metrics.space8

                    TabRow {
                        name: qsTr("Which list")
                        objectName: "tabs"
                        options: [qsTr("Apps on this Mac"), qsTr("Leftovers")]
                        onPicked: index => current = index
                    }

                    SegmentedPicker {
                        name: qsTr("How often")
                        objectName: "picker"
                        options: [qsTr("Every time"), qsTr("Just once"), qsTr("Never")]
                        onPicked: index => current = index
                    }

                    SegmentedPicker {
                        enabled: false
                        name: qsTr("Picker, disabled")
                        options: [qsTr("On"), qsTr("Off")]
                    }
                }

                StepSlider {
                    Layout.fillWidth: true
                    from: 70
                    label: qsTr("Clear it when the disk reaches ") + value + "%"
                    objectName: "slider"
                    to: 99
                    value: 96
                }

                StepSlider {
                    Layout.fillWidth: true
                    enabled: false
                    from: 70
                    label: qsTr("Slider, disabled")
                    to: 99
                    value: 80
                }
            }

            Group {
                Layout.fillWidth: true
                label: qsTr("Switch rows")

                Card {
                    Layout.fillWidth: true
                    implicitHeight: switches.implicitHeight

                    Column {
                        id: switches

                        width: parent.width

                        SwitchRow {
                            caption: qsTr("1 item · when the disk is 90% full")
                            note: qsTr("Would clear 2.9 GB now.")
                            objectName: "switchRow"
                            on: false
                            size: qsTr("2.9 GB")
                            text: qsTr("Package and build caches. Each one refetches what it needs next time you build.")
                            title: qsTr("Keep build tools in check")
                            width: parent.width
                            onAsked: wanted => on = wanted
                        }

                        SwitchRow {
                            caption: qsTr("Fired 3× · last 2 days ago")
                            divided: true
                            on: true
                            text: qsTr("When the disk is 95% full, clear it · just once")
                            title: qsTr("Leftovers from building apps")
                            width: parent.width

                            PushButton {
                                text: qsTr("Remove")
                            }
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: qsTr("Progress rows")

                Card {
                    Layout.fillWidth: true
                    implicitHeight: copies.implicitHeight

                    Column {
                        id: copies

                        width: parent.width

                        ProgressRow {
                            detail: qsTr("Created 7 months ago · last used 2 months ago")
                            objectName: "runningRow"
                            progress: 0.337
                            progressText: qsTr("6.2 GB of 18.4 GB · 104 MB/s")
                            running: true
                            size: qsTr("18.4 GB")
                            title: qsTr("Downloaded AI models")
                            width: parent.width
                        }

                        ProgressRow {
                            action: qsTr("Move")
                            actionEnabled: false
                            detail: qsTr("Created over a year ago · last used 3 months ago")
                            divided: true
                            size: qsTr("1.8 GB")
                            title: qsTr("Test Android phones")
                            width: parent.width
                        }
                    }
                }
            }

            Group {
                Layout.fillWidth: true
                label: qsTr("Chips")

                ChipFlow {
                    Layout.fillWidth: true
                    name: qsTr("Questions")
                    objectName: "chips"
                    texts: [qsTr("What is using the most space?"), qsTr("Is it safe to clear caches?"), qsTr("How do I get 10 GB back?"), qsTr("What changed?")]
                }
            }

            Group {
                label: qsTr("Dates")

                RowLayout {
                    spacing: Metrics.space20

                    DateField {
                        name: qsTr("From")
                        objectName: "date"
                        value: new Date(2020, 5, 14, 9, 30)
                        onPicked: moment => value = moment
                    }

                    DateField {
                        enabled: false
                        name: qsTr("Date, disabled")
                        value: new Date(2022, 5, 14, 9, 30)
                    }
                }
            }
        }
    }

    ConfirmDialog {
        id: question

        message: qsTr("What happens then, and that it can be put back.")
        objectName: "question"
        title: qsTr("Move renderer to the Trash?")

        PushButton {
            kind: PushButton.Prominent
            text: qsTr("Move to Trash")
            onClicked: question.close()
        }

        PushButton {
            kind: PushButton.Destructive
            text: qsTr("Delete permanently")
            onClicked: question.close()
        }
    }

    Sheet {
        id: sheet

        objectName: "sheet"
        title: qsTr("A sheet")

        contentItem: ColumnLayout {
            HeadingText {
                Layout.margins: Metrics.space20
                text: qsTr("A sheet")
            }

            PushButton {
                Layout.margins: Metrics.space20
                focus: true
                text: qsTr("Close the sheet")
                onClicked: sheet.close()
            }
        }
    }
}
