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

            readonly property bool isWide: parent.width >= fields.naturalWidth + button.implicitWidth + 2 * Metrics.space16 + Metrics.space20

            anchors.left: parent.left
            anchors.leftMargin: Metrics.space16
            anchors.right: parent.right
            anchors.rightMargin: Metrics.space16
            anchors.verticalCenter: parent.verticalCenter
            columnSpacing: Metrics.space20
            columns: isWide ? 2 : 1
            rowSpacing: Metrics.space12

            // Goes on in the next line where the words are long.
            Flow {
                id: fields

                readonly property real naturalWidth: from.implicitWidth + to.implicitWidth + videos.width + 2 * spacing + Metrics.space4

                Layout.fillWidth: true
                spacing: Metrics.space20

                RowLayout {
                    id: from

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
                }

                RowLayout {
                    id: to

                    spacing: Metrics.space8

                    BodyText {
                        Accessible.ignored: true
                        text: qsTr("To")
                    }

                    DateField {
                        name: qsTr("To")
                        objectName: "to"
                        value: root.photos.to
                        onPicked: moment => root.photos.setTo(moment)
                    }
                }

                Row {
                    // A little more room before it than between the two dates.
                    leftPadding: fields.width >= fields.naturalWidth ? Metrics.space4 : 0

                    TickBox {
                        id: videos

                        checked: root.photos.includesVideos
                        height: Metrics.fieldHeight
                        text: qsTr("Include videos")
                        width: Math.ceil(implicitWidth) + 1
                        onToggled: root.photos.setIncludesVideos(checked)
                    }
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
