import QtQuick
import Quillbrook

// One line of the screen "Free up space", drawn as what it is.
// Not `ComponentBehavior: Bound`: a Loader of Qt 6.4 can't create bound components.
Item {
    id: root

    required property int index
    required property int kind
    required property wardenRow row
    required property WardenState warden

    readonly property bool current: ListView.isCurrentItem

    // What is no finding speaks for itself.
    Accessible.ignored: kind !== WardenLines.Finding && kind !== WardenLines.Held
    Accessible.name: row.spoken
    Accessible.role: Accessible.ListItem
    Keys.onSpacePressed: warden.toggle(index)
    activeFocusOnTab: current && !Accessible.ignored
    implicitHeight: content.implicitHeight + (kind === WardenLines.Banner && !row.opened || kind === WardenLines.Held && row.last ? Metrics.bannerGap : 0)

    Loader {
        id: content

        sourceComponent: {
            switch (root.kind) {
            case WardenLines.Banner:
                return banner;
            case WardenLines.Finding:
                return finding;
            case WardenLines.Held:
                return held;
            case WardenLines.LogLine:
                return line;
            default:
                return heading;
            }
        }
        width: root.width
    }

    // qmllint disable unqualified
    Component {
        id: banner

        WardenBanner {
            row: root.row
            onActed: root.warden.act(root.index)
            onActedOtherwise: root.warden.act(root.index, 1)
            onTurned: root.warden.togglePath(root.index)
        }
    }

    Component {
        id: heading

        WardenHeading {
            row: root.row
        }
    }

    Component {
        id: finding

        FindingRow {
            current: root.current
            hasKeyboard: root.activeFocus
            row: root.row
            onPathToggled: root.warden.togglePath(root.index)
            onRevealed: root.warden.reveal(root.index)
            onToggled: root.warden.toggle(root.index)
        }
    }

    Component {
        id: held

        HeldRow {
            current: root.current
            row: root.row
            onToggled: root.warden.toggle(root.index)
        }
    }

    Component {
        id: line

        SelectableLines {
            bottomPadding: Metrics.space4
            text: root.row.title
        }
    }
    // qmllint enable unqualified
}
