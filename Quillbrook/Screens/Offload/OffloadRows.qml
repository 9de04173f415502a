pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A card of things that can be moved, or brought back.
Card {
    id: root

    required property string action
    required property int actionWidth
    required property string name
    required property OffloadRowsModel rows

    signal acted(int row)
    signal stopped

    Accessible.name: name
    Accessible.role: Accessible.List
    implicitHeight: column.implicitHeight

    Column {
        id: column

        width: parent.width

        Repeater {
            model: root.rows

            ProgressRow {
                required property int index
                required property offloadRow row

                action: root.action
                actionEnabled: row.actionEnabled
                actionWidth: root.actionWidth
                detail: row.detail
                divided: index > 0
                progress: row.progress
                progressText: row.progressText
                running: row.running
                size: row.size
                title: row.title
                warns: row.warns
                width: column.width

                onActed: root.acted(index)
                onStopped: root.stopped()
            }
        }
    }
}
