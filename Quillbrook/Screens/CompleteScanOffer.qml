pragma ComponentBehavior: Bound

import Quillbrook

// Says what a quiet scan left out, and offers to take it in.
Banner {
    id: root

    signal accepted

    symbol: "lock.circle"
    text: "Photos, Music, Documents and other apps' files are protected by macOS, so Quillbrook has not looked at them. Including them shows you the whole disk — your Mac will ask your permission once for each one."
    title: "Photos, Music, Documents and other apps' data weren't measured"
    tone: Theme.label

    PushButton {
        text: "Include them"
        onClicked: root.accepted()
    }
}
