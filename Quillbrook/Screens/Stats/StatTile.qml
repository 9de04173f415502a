pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One figure of the machine, with its course beside it where it has one.
Card {
    id: root

    required property string title
    required property string value
    required property string detail
    property list<real> course
    property bool hasCourse: false

    Accessible.description: detail
    Accessible.name: title + " " + value
    Accessible.role: Accessible.Grouping

    implicitHeight: Metrics.statTileHeight
    implicitWidth: Metrics.columnWidth / 2
    radius: Metrics.statTileRadius

    // What is left beside the words, which it never stands behind.
    readonly property real trendRoom: width - 2 * Metrics.space12 - Metrics.space8 - Math.ceil(Math.max(figure.implicitWidth, words.implicitWidth))

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Metrics.space12
        spacing: 0

        CaptionText {
            Layout.fillWidth: true
            Layout.minimumHeight: Metrics.captionLine
            text: root.title
        }

        FigureText {
            id: figure

            Layout.minimumHeight: Metrics.statFigureLine
            font.pointSize: Metrics.statFont
            text: root.value
            verticalAlignment: Text.AlignVCenter
        }

        CaptionText {
            id: words

            Layout.fillWidth: true
            Layout.minimumHeight: Metrics.captionLine
            text: root.detail
        }
    }

    TrendLine {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Metrics.space16
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space12
        height: Metrics.trendHeight
        values: root.course
        visible: root.hasCourse
        width: Math.max(0, Math.min(Metrics.trendWidth, root.trendRoom))
    }
}
