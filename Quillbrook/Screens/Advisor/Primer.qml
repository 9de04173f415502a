pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What stands there before the first question.
Item {
    id: root

    required property AdvisorState advisor

    implicitHeight: column.implicitHeight

    ColumnLayout {
        id: column

        spacing: Metrics.space8
        width: Math.min(parent.width, Metrics.columnWidth)

        HeadingText {
            Layout.fillWidth: true
            text: qsTr("It sees the findings, never your files.")
            wrapMode: Text.Wrap
        }

        BodyText {
            Layout.bottomMargin: Metrics.space8
            Layout.fillWidth: true
            lineHeight: Metrics.looseLines
            text: qsTr("Sizes, counts and dates are all it receives. It has no delete function and no network access — when it suggests removing something, you pick the item and confirm it yourself.")
            wrapMode: Text.Wrap
        }

        Repeater {
            model: root.advisor.questions

            PushButton {
                required property int index
                required property string modelData

                Layout.maximumWidth: column.width
                text: modelData
                onClicked: root.advisor.askSuggested(index)
            }
        }
    }
}
