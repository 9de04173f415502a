import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "SwitchRow"
    visible: true
    when: windowShown
    width: 800
    height: 300

    Component {
        id: maker

        SwitchRow {
            caption: "2 items"
            on: false
            text: "Cached pages and images."
            title: "Keep browser caches down"
            width: 600
        }
    }

    function test_linesStandAsFarApartAsDrawn() {
        const row = createTemporaryObject(maker, root);
        compare(row.implicitHeight, 80);
        row.note = "Would clear 1.6 GB now.";
        tryCompare(row, "implicitHeight", 98);
        row.text = "Cached pages and images.\nSites load a little slower once.";
        tryCompare(row, "implicitHeight", 116);
    }
}
