pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The sheet in which a rule is made: when, how often, and what happens then.
Sheet {
    id: root

    required property RuleEditorState editor

    // Opens and closes as the state says.
    function follow() {
        if (editor.isOpen)
            open();
        else
            close();
    }

    implicitHeight: column.implicitHeight
    title: editor.heading

    onClosed: editor.cancel()
    onOpened: slider.forceActiveFocus(Qt.TabFocusReason)

    component Divider: Hairline {
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.space20
        Layout.rightMargin: Metrics.space20
        faint: true
    }

    component Words: BodyText {
        Layout.fillWidth: true
        Layout.leftMargin: Metrics.space20
        Layout.rightMargin: Metrics.space20
        color: Theme.label
        font.pointSize: Metrics.smallFont
        lineHeight: Metrics.textLine
        lineHeightMode: Text.FixedHeight
        wrapMode: Text.Wrap
    }

    ColumnLayout {
        id: column

        anchors.fill: parent
        spacing: 0

        HeadingText {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space20
            text: root.editor.heading
            wrapMode: Text.Wrap
        }

        Words {
            Layout.bottomMargin: Metrics.space16
            text: root.editor.what
        }

        Hairline {
            Layout.fillWidth: true
        }

        StepSlider {
            id: slider

            Layout.fillWidth: true
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space16
            from: 70
            label: root.editor.thresholdLabel
            to: 99
            value: root.editor.threshold
            onMoved: root.editor.threshold = value
        }

        CaptionText {
            Layout.bottomMargin: Metrics.space16
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.space20
            Layout.minimumHeight: Metrics.captionLine
            Layout.rightMargin: Metrics.space20
            color: Theme.safe
            text: root.editor.dryRun
            visible: text !== ""
            wrapMode: Text.Wrap
        }

        Divider {
        }

        RowLayout {
            Layout.bottomMargin: Metrics.space12
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space12

            BodyText {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.strong
                text: qsTr("How often")
            }

            SegmentedPicker {
                current: root.editor.cadence
                name: qsTr("How often")
                options: [root.editor.cadences[0], root.editor.cadences[1]]
                onPicked: index => root.editor.cadence = index
            }
        }

        Divider {
        }

        Words {
            Layout.bottomMargin: Metrics.space20
            Layout.topMargin: Metrics.space16
            text: qsTr("It goes to the Trash first, so you can put it back for a day. Then Quillbrook removes it for good and the space comes back — straight away if the disk is nearly full.")
        }

        Words {
            Accessible.role: Accessible.AlertMessage
            Layout.bottomMargin: Metrics.space16
            color: Theme.danger
            text: root.editor.problem
            visible: text !== ""
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.hairlineWidth
            Layout.rightMargin: Metrics.hairlineWidth
            Layout.bottomMargin: Metrics.hairlineWidth
            color: "transparent"
            implicitHeight: Metrics.controlHeight + 2 * Metrics.space12 + 2 * Metrics.hairlineWidth

            // Round below, like the sheet that it lies in.
            Item {
                anchors.fill: parent
                clip: true

                Rectangle {
                    anchors.bottomMargin: 0
                    anchors.fill: parent
                    anchors.topMargin: -radius
                    color: Theme.surfaceSunken
                    radius: Metrics.cardRadius - Metrics.hairlineWidth
                }
            }

            Hairline {
                width: parent.width
            }

            Row {
                anchors.right: parent.right
                anchors.rightMargin: Metrics.space20 - Metrics.hairlineWidth
                anchors.verticalCenter: parent.verticalCenter
                spacing: Metrics.space8

                PushButton {
                    text: qsTr("Cancel")
                    onClicked: root.editor.cancel()
                }

                PushButton {
                    kind: PushButton.Prominent
                    text: qsTr("Create rule")
                    onClicked: root.editor.create()
                }
            }
        }
    }
}
