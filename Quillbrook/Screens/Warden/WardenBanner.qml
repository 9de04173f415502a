pragma ComponentBehavior: Bound

import Quillbrook

// Something that the screen "Free up space" has to tell before it lists anything, with at most two buttons.
Banner {
    id: root

    required property wardenRow row

    signal acted
    signal actedOtherwise
    signal turned

    // What belongs to it follows on the same card.
    border.width: row.opened ? 0 : Metrics.hairlineWidth
    note: row.note
    symbol: row.symbol
    text: row.what
    tinted: row.tinted
    title: row.title
    tone: row.tone

    PushButton {
        enabled: !root.row.actionWaits
        text: root.row.action
        visible: text !== ""
        onClicked: root.acted()
    }

    PushButton {
        enabled: !root.row.otherActionWaits
        text: root.row.otherAction
        visible: text !== ""
        onClicked: root.actedOtherwise()
    }

    SymbolButton {
        implicitHeight: Metrics.chevronSide
        implicitWidth: Metrics.chevronSide
        rotation: root.row.opened ? 180 : 0
        symbol: "chevron.down"
        text: {
            if (root.row.opened)
                return qsTr("Hide what is in the Trash");
            return qsTr("Show what is in the Trash");
        }
        visible: root.row.opens
        onClicked: root.turned()
    }

    background: CardSlice {
        anchors.fill: parent
        first: true
        visible: root.row.opened
    }
}
