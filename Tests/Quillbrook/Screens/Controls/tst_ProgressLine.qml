import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "ProgressLine"
    visible: true
    when: windowShown
    width: 400
    height: 100

    Component {
        id: maker

        ProgressLine {
            width: 200
        }
    }

    function test_fillIsTheShare_data() {
        return [
            {
                tag: "nothing",
                value: 0,
                shown: false,
                width: 8
            },
            {
                tag: "hardly anything stays round",
                value: 0.001,
                shown: true,
                width: 8
            },
            {
                tag: "half",
                value: 0.5,
                shown: true,
                width: 100
            },
            {
                tag: "all",
                value: 1,
                shown: true,
                width: 200
            },
            {
                tag: "more than all",
                value: 1.7,
                shown: true,
                width: 200
            },
            {
                tag: "less than nothing",
                value: -1,
                shown: false,
                width: 8
            }
        ];
    }

    function test_fillIsTheShare(row) {
        const line = createTemporaryObject(maker, root, {
            value: row.value
        });
        const fill = line.contentItem.children[0];
        compare(fill.visible, row.shown);
        tryCompare(fill, "width", row.width);
    }
}
