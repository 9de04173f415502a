pragma ComponentBehavior: Bound

import Quillbrook

// Something that the screen "Free up space" has to tell before it lists anything, with at most two buttons.
Banner {
    id: root

    required property wardenRow row

    signal acted
    signal actedOtherwise

    note: row.note
    symbol: row.symbol
    text: row.what
    tinted: row.tinted
    title: row.title
    tone: row.tone

    PushButton {
        text: root.row.action
        visible: text !== ""
        onClicked: root.acted()
    }

    PushButton {
        text: root.row.otherAction
        visible: text !== ""
        onClicked: root.actedOtherwise()
    }
}
