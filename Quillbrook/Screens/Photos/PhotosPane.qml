pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// Photos by date: a range to choose, what is in it, what deleting it would mean, and only then the one red button.
Item {
    id: root

    required property PhotosState photos

    function ask() {
        if (photos.questionTitle === "")
            question.close();
        else
            question.open();
    }

    Component.onCompleted: ask()

    Connections {
        function onQuestionChanged() {
            root.ask();
        }

        // The linter loses what a state in a namespace derives from.
        target: root.photos // qmllint disable
    }

    SlimScrollBar {
        id: bar

        anchors.bottom: parent.bottom
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4
        anchors.top: parent.top
    }

    Flickable {
        id: flickable

        // Whatever takes the keyboard is brought into view.
        function show(item: Item) {
            if (!item)
                return;
            const top = item.mapToItem(column, 0, 0).y;
            if (top < contentY)
                contentY = Math.max(top - Metrics.space20, 0);
            else if (top + item.height > contentY + height)
                contentY = top + item.height + Metrics.space20 - height;
        }

        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: column.implicitHeight + 2 * Metrics.paneInset
        objectName: "photosFlickable"

        T.ScrollBar.vertical: bar

        Connections {
            function onActiveFocusItemChanged() {
                const item = flickable.Window.activeFocusItem;
                for (let above = item; above; above = above.parent)
                    if (above === column)
                        flickable.show(item);
            }

            target: flickable.Window.window
        }

        ColumnLayout {
            id: column

            spacing: Metrics.space20
            width: flickable.width - 2 * Metrics.paneInset
            x: Metrics.paneInset
            y: Metrics.paneInset

            ColumnLayout {
                spacing: Metrics.space4

                HeadingText {
                    Layout.fillWidth: true
                    text: qsTr("Clear photos and videos from a date range")
                    wrapMode: Text.Wrap
                }

                BodyText {
                    Layout.fillWidth: true
                    color: Theme.label
                    font.pointSize: Metrics.smallFont
                    lineHeight: Metrics.textLine
                    lineHeightMode: Text.FixedHeight
                    text: qsTr("Photos live in a database rather than a folder, so Quillbrook asks the Photos app to do this rather than touching files itself.")
                    wrapMode: Text.Wrap
                }
            }

            PhotosAccess {
                Layout.fillWidth: true
                photos: root.photos
            }

            PhotosPicker {
                Layout.fillWidth: true
                photos: root.photos
                visible: root.photos.hasPicker
            }

            PhotosProgress {
                photos: root.photos
            }

            PhotosResult {
                Layout.fillWidth: true
                photos: root.photos
                visible: root.photos.hasResult
                onDeleteAsked: confirming.open()
            }

            PhotosOutcome {
                Layout.fillWidth: true
                photos: root.photos
            }
        }
    }

    ConfirmDialog {
        id: confirming

        message: qsTr("They go to Recently Deleted for 30 days. If iCloud Photos is on, they are removed from your other devices too. Photos will ask you to confirm as well.")
        title: root.photos.confirmTitle

        PushButton {
            kind: PushButton.Destructive
            text: qsTr("Move to Recently Deleted")
            onClicked: {
                confirming.close();
                root.photos.deleteRange();
            }
        }
    }

    // The library's own, which comes after ours where both ask.
    ConfirmDialog {
        id: question

        cancelText: root.photos.questionNo
        message: root.photos.questionText
        title: root.photos.questionTitle

        onClosed: root.photos.answer(false)

        PushButton {
            kind: root.photos.isAskedToDelete ? PushButton.Destructive : PushButton.Prominent
            text: root.photos.questionYes
            onClicked: root.photos.answer(true)
        }
    }
}
