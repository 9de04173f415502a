pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Asks before something is done: title, message, and a row of buttons that ends the question. The buttons for
// what may be done are handed in, weightiest first, and each closes the dialog itself; the one that lets it be
// is always there, and it is the one that has the keyboard, so that no careless Return does harm.
Sheet {
    id: root

    required property string message
    property string cancelText: qsTr("Cancel")
    property bool hasExtra: false
    default property alias actions: actionRow.data
    // What stands between the message and the buttons.
    property alias extra: extraColumn.data

    signal cancelled

    function cancel() {
        close();
        cancelled();
    }

    implicitHeight: column.implicitHeight
    // Wider where the words on the buttons ask for it.
    width: Math.max(Metrics.dialogWidth, buttons.implicitWidth + 2 * Metrics.space20)

    onOpened: hold(cancelButton)

    ColumnLayout {
        id: column

        anchors.fill: parent
        spacing: 0

        HeadingText {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space20
            text: root.title
            wrapMode: Text.Wrap
        }

        BodyText {
            Layout.bottomMargin: extraColumn.visible ? Metrics.space12 : Metrics.space20
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space8
            lineHeight: Metrics.textLine
            lineHeightMode: Text.FixedHeight
            text: root.message
            wrapMode: Text.Wrap
        }

        ColumnLayout {
            id: extraColumn

            Layout.bottomMargin: Metrics.space20
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            spacing: Metrics.space8
            visible: root.hasExtra
        }

        Hairline {
            Layout.fillWidth: true
        }

        RowLayout {
            id: buttons

            Layout.bottomMargin: Metrics.space12
            Layout.leftMargin: Metrics.space20
            Layout.rightMargin: Metrics.space20
            Layout.topMargin: Metrics.space12
            spacing: Metrics.space8

            Item {
                Layout.fillWidth: true
            }

            PushButton {
                id: cancelButton

                focus: true
                objectName: "cancelButton"
                text: root.cancelText
                onClicked: root.cancel()
            }

            Row {
                id: actionRow

                layoutDirection: Qt.RightToLeft
                spacing: Metrics.space8
            }
        }
    }
}
