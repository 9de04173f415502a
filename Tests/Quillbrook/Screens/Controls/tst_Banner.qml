import QtQuick
import QtTest
import Quillbrook

TestCase {
    id: root

    name: "Banner"
    visible: true
    when: windowShown
    width: 800
    height: 300

    Component {
        id: maker

        Banner {
            symbol: "trash"
            text: "Why, in a few words."
            title: "3.4 GB is in the Trash"

            PushButton {
                text: "Finish"
            }
        }
    }

    function test_isReadAsTitleAndText() {
        const banner = createTemporaryObject(maker, root, {
            width: 600
        });
        compare(banner.Accessible.name, "3.4 GB is in the Trash");
        compare(banner.Accessible.description, "Why, in a few words.");
    }

    function test_growsWithItsText() {
        const banner = createTemporaryObject(maker, root, {
            width: 400
        });
        const before = banner.implicitHeight;
        banner.text = "A much longer explanation. ".repeat(12);
        tryVerify(() => banner.implicitHeight > before + 30);
    }

    function test_linesStandAsFarApartAsDrawn() {
        const banner = createTemporaryObject(maker, root, {
            width: 600
        });
        compare(banner.implicitHeight, 60);
        banner.text = "Why,\nin a few words.";
        tryCompare(banner, "implicitHeight", 76);
    }

    function test_noteIsAsReadableAsTheText() {
        const banner = createTemporaryObject(maker, root, {
            note: "What comes of it.",
            width: 600
        });
        // Compared as text: what draws it keeps fewer digits of a colour.
        compare(String(findChild(banner, "note").color), String(Theme.label));
    }

    function test_tintedBannerTakesItsTone() {
        const banner = createTemporaryObject(maker, root, {
            tinted: true,
            tone: Theme.careful,
            width: 600
        });
        compare(banner.border.color, Theme.careful);
        verify(banner.color !== Theme.surface);
        banner.tinted = false;
        compare(banner.border.color, Theme.hairline);
        compare(banner.color, Theme.surface);
    }
}
