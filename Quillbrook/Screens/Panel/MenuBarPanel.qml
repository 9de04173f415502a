pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The small window that drops from the tray: how much is free and how much could be, the watcher's switches,
// and the ways back. Who shows it also hides it when it loses the keyboard. Its corners are square: without a
// compositor no window has others.
Window {
    id: root

    required property MenuBarPanelState panel

    readonly property int fittingHeight: Math.ceil(column.implicitHeight) + 2 * Metrics.hairlineWidth
    // Wider only where the words on the buttons ask for it.
    readonly property int fittingWidth: Math.max(Metrics.panelWidth, Math.ceil(foot.implicitWidth) + 2 * (Metrics.panelFootInset + Metrics.hairlineWidth))
    /// How often the height was asked for again since it last changed: a desktop that insists on its own gets it.
    property int refits: 0
    readonly property color summaryTone: panel.isReclaimable ? Theme.safe : Theme.label

    // A desktop that hears of two sizes at once may answer with the one from before.
    function fit() {
        if (height === fittingHeight || refits === 3)
            return;
        ++refits;
        height = fittingHeight;
    }

    color: Qt.tint(Theme.page, Theme.faded(Theme.surface, Metrics.faintOpacity))
    flags: Qt.Tool | Qt.FramelessWindowHint
    height: fittingHeight
    title: "Quillbrook"
    width: fittingWidth

    onFittingHeightChanged: {
        refits = 0;
        height = fittingHeight;
    }
    onHeightChanged: refitting.restart()
    onVisibleChanged: {
        if (visible)
            panel.appear();
        else
            panel.disappear();
    }

    // Once the change that is under way has come to its end.
    Timer {
        id: refitting

        interval: 0
        onTriggered: root.fit()
    }

    Shortcut {
        sequence: "Esc"
        onActivated: root.close()
    }

    Rectangle {
        anchors.fill: parent
        border.color: Theme.hairline
        border.width: Metrics.hairlineWidth
        color: "transparent"
    }

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: Metrics.hairlineWidth
        spacing: 0

        Row {
            Layout.leftMargin: Metrics.panelInset
            Layout.topMargin: Metrics.space20
            spacing: Metrics.space4

            FigureText {
                id: figure

                text: root.panel.freeText
            }

            BodyText {
                anchors.baseline: figure.baseline
                color: Theme.label
                text: qsTr("free")
            }
        }

        BodyText {
            Layout.bottomMargin: Metrics.space12
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.panelInset
            Layout.rightMargin: Metrics.panelInset
            color: root.summaryTone
            text: root.panel.summary
            wrapMode: Text.Wrap
        }

        Hairline {
            Layout.fillWidth: true
        }

        PanelSwitch {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.panelInset
            Layout.rightMargin: Metrics.panelInset
            Layout.topMargin: Metrics.space24
            line: root.panel.watchingLine
            on: root.panel.watching
            title: qsTr("Keep watching this Mac")
            onAsked: wanted => root.panel.setWatching(wanted)
        }

        PanelSwitch {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.panelInset
            Layout.rightMargin: Metrics.panelInset
            Layout.topMargin: Metrics.panelGap
            hint: root.panel.settingsHint
            line: root.panel.notificationsLine
            on: root.panel.notificationsWanted
            title: qsTr("Tell me when space runs low")
            visible: root.panel.watching
            onAsked: wanted => root.panel.setNotificationsWanted(wanted)

            PushButton {
                kind: PushButton.Link
                text: qsTr("Open Settings")
                visible: root.panel.offersSettings
                onClicked: root.panel.openSettings()
            }
        }

        PanelSwitch {
            Layout.fillWidth: true
            Layout.leftMargin: Metrics.panelInset
            Layout.rightMargin: Metrics.panelInset
            Layout.topMargin: Metrics.panelGap
            line: root.panel.loginLine
            on: root.panel.launchesAtLogin
            title: qsTr("Keep watching after I restart")
            visible: root.panel.watching
            onAsked: wanted => root.panel.setLaunchAtLogin(wanted)
        }

        Item {
            Layout.fillHeight: true
            Layout.minimumHeight: Metrics.space24
        }

        Hairline {
            Layout.fillWidth: true
        }

        RowLayout {
            id: foot

            Layout.fillWidth: true
            Layout.bottomMargin: Metrics.space8
            Layout.leftMargin: Metrics.panelFootInset
            Layout.rightMargin: Metrics.panelFootInset
            Layout.topMargin: Metrics.space12
            spacing: Metrics.space8

            PushButton {
                kind: PushButton.Prominent
                text: qsTr("Open")
                onClicked: root.panel.open()
            }

            PushButton {
                text: qsTr("Check now")
                onClicked: root.panel.checkNow()
            }

            Item {
                Layout.fillWidth: true
            }

            PushButton {
                id: quit

                Accessible.description: root.panel.quitHelp
                text: qsTr("Quit")
                onClicked: root.panel.quit()

                HelpTip {
                    shown: quit.hovered || quit.visualFocus
                    text: root.panel.quitHelp
                }
            }
        }
    }
}
