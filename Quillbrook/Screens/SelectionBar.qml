pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What is selected on the map or in a list, and what can be done with it.
Card {
    id: root

    required property SelectionBarState selection

    Accessible.name: selection.name
    Accessible.role: Accessible.Grouping
    implicitHeight: Metrics.selectionBarHeight
    visible: selection.present

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Metrics.space16
        anchors.rightMargin: Metrics.space8
        spacing: Metrics.space12

        Symbol {
            color: Theme.label
            name: root.selection.symbol
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0

            RowLayout {
                spacing: Metrics.space12

                SelectableText {
                    Layout.fillWidth: true
                    Layout.maximumWidth: naturalWidth
                    Layout.preferredWidth: naturalWidth
                    activeFocusOnTab: false
                    color: Theme.strong
                    font.pointSize: Metrics.bodyFont
                    font.weight: Font.DemiBold
                    fullText: root.selection.name
                }

                BodyText {
                    color: Theme.accent
                    semibold: true
                    text: root.selection.size
                }

                Item {
                    Layout.fillWidth: true
                }
            }

            RowLayout {
                spacing: Metrics.space4

                SelectableText {
                    Layout.fillWidth: true
                    Layout.maximumWidth: naturalWidth
                    Layout.preferredWidth: naturalWidth
                    fullText: root.selection.path
                }

                CaptionText {
                    text: "· " + root.selection.items
                    visible: root.selection.items !== ""
                }

                Item {
                    Layout.fillWidth: true
                }
            }
        }

        PushButton {
            text: "Open"
            visible: root.selection.canOpen
            onClicked: root.selection.open()
        }

        PushButton {
            text: "Show in Finder"
            onClicked: root.selection.reveal()
        }

        SymbolButton {
            symbol: "xmark"
            text: "Clear selection"
            onClicked: root.selection.dismiss()
        }
    }
}
