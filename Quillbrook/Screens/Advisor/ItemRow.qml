pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// One item of a proposal, to be chosen as the one that goes.
ListRow {
    id: root

    required property bool chosen
    required property string blocked
    required property string detail
    required property int index
    required property string name
    required property bool removable
    required property string size

    Accessible.description: blocked === "" ? detail : detail + " " + blocked

    activeFocusOnTab: removable
    enabled: removable
    horizontalPadding: Metrics.space12
    // Why it can't go is there to be read.
    opacity: 1
    radius: Metrics.controlRadius + 1
    selected: chosen
    text: name + ", " + size
    verticalPadding: Metrics.bannerGap + Metrics.hairlineWidth

    background: Rectangle {
        border.color: root.chosen ? Theme.accent : Theme.hairline
        border.width: Metrics.hairlineWidth
        color: Theme.surface
        radius: root.radius

        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: parent.radius
        }

        FocusRing {
            gap: -border.width
            innerRadius: root.radius
            shown: root.activeFocus && root.focusReason !== Qt.MouseFocusReason
        }
    }
    contentItem: RowLayout {
        spacing: Metrics.space12

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: Metrics.hairlineWidth
            color: !root.removable ? Theme.hairline : root.chosen ? Theme.accent : Theme.label
            name: root.chosen ? "largecircle.fill.circle" : "circle"
        }

        ColumnLayout {
            spacing: 0

            RowLayout {
                opacity: root.enabled ? 1 : Metrics.disabledOpacity
                spacing: Metrics.space12

                BodyText {
                    Accessible.ignored: true
                    Layout.fillWidth: true
                    color: Theme.strong
                    elide: Text.ElideMiddle
                    semibold: true
                    text: root.name
                }

                BodyText {
                    Accessible.ignored: true
                    color: root.chosen ? Theme.accent : Theme.label
                    semibold: true
                    text: root.size
                }
            }

            CaptionText {
                Accessible.ignored: true
                Layout.fillWidth: true
                opacity: root.enabled ? 1 : Metrics.disabledOpacity
                text: root.detail
            }

            CaptionText {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.careful
                text: root.blocked
                visible: text !== ""
                wrapMode: Text.Wrap
            }
        }
    }
}
