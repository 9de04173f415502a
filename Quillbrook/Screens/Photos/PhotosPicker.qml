pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The range, in one card: two dates, whether videos count, and the button that counts.
ColumnLayout {
    id: root

    required property PhotosState photos

    spacing: Metrics.space8

    SectionLabel {
        text: qsTr("BETWEEN")
    }

    Card {
        Layout.fillWidth: true
        implicitHeight: grid.implicitHeight + 2 * Metrics.space16

        GridLayout {
            id: grid

            readonly property bool isWide: parent.width >= fields.implicitWidth + button.implicitWidth + 2 * Metrics.space16 + Metrics.space20

            anchors.left: parent.left
            anchors.leftMargin: Metrics.space16
            anchors.right: parent.right
            anchors.rightMargin: Metrics.space16
            anchors.verticalCenter: parent.verticalCenter
            columnSpacing: Metrics.space20
            columns: isWide ? 2 : 1
            rowSpacing: Metrics.space12

            RowLayout {
                id: fields

                Layout.fillWidth: true
                spacing: Metrics.space8

                BodyText {
                    Accessible.ignored: true
                    text: qsTr("From")
                }

                DateField {
                    name: qsTr("From")
                    objectName: "from"
                    value: root.photos.from
                    onPicked: moment => root.photos.setFrom(moment)
                }

                BodyText {
                    Accessible.ignored: true
                    Layout.leftMargin: Metrics.space12
                    text: qsTr("To")
                }

                DateField {
                    name: qsTr("To")
                    objectName: "to"
                    value: root.photos.to
                    onPicked: moment => root.photos.setTo(moment)
                }

                TickBox {
                    Layout.leftMargin: Metrics.space16
                    checked: root.photos.includesVideos
                    text: qsTr("Include videos")
                    onToggled: root.photos.setIncludesVideos(checked)
                }

                Item {
                    Layout.fillWidth: true
                }
            }

            PushButton {
                id: button

                Layout.alignment: grid.isWide ? Qt.AlignRight : Qt.AlignLeft
                enabled: root.photos.canMeasure
                text: root.photos.measureText
                onClicked: root.photos.measure()
            }
        }
    }
}
