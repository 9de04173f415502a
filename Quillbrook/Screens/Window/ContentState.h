#pragma once

// What the main window shows: which pane is chosen, and what stands on its right side, which is not the same
// while a scan runs or before there is a tree. It also runs the start action, once, when the window's content
// first appears. Main thread only; what it is made from outlives it.

#include "Core/AppModel.h"
#include "Core/Pane.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class Background;
class FolderAccess;

class ContentState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// The file of what stands on the right side, below the folder of the screens.
    Q_PROPERTY(QString file READ file NOTIFY shownChanged FINAL)
    /// There is no folder that may be read, and so nothing that may be scanned.
    Q_PROPERTY(bool isGated READ isGated NOTIFY shownChanged FINAL)
    /// The question field stands under every pane but the conversation itself.
    Q_PROPERTY(bool asksBelow READ asksBelow NOTIFY paneChanged FINAL)

public:
    /// What stands there where no pane can: the gate, the scanning view, or a notice.
    [[nodiscard]] static QString gateFile() { return QStringLiteral("Window/PermissionGate.qml"); }
    [[nodiscard]] static QString scanningFile() { return QStringLiteral("Scanning/ScanningView.qml"); }
    [[nodiscard]] static QString noticeFile() { return QStringLiteral("Window/CentredNotice.qml"); }

    /// What stands on the right side: its file, and the words of a notice.
    struct Shown
    {
        QString file = noticeFile();
        QString title{};
        QString message{};

        bool operator==(const Shown &) const = default;
    };

    struct Circumstances
    {
        /// There is no folder that may be read.
        bool isGated = false;
        Phase phase{};
        Pane pane = Pane::warden;
    };

    ContentState(AppModel &model, FolderAccess &access, Background &background, QObject *parent = nullptr);
    /// The gate goes before all else, a scan before the chosen pane, and so does the lack of anything to
    /// show.
    [[nodiscard]] static Shown shownFor(const Circumstances &circumstances);

    /// To be called whenever the window opens; the start action runs the first time only.
    Q_INVOKABLE void appear();
    /// To be called whenever the window is closed.
    Q_INVOKABLE void disappear();
    /// Lets the person pick their home folder, and measures it then. Returns at once.
    Q_INVOKABLE void chooseHomeFolder();
    /// Measures what may be read now, in the present scope, and gives up a scan of what was before.
    void rescan();
    /// Shows a pane, and leaves the keyboard where it is.
    void setPane(Pane pane);
    /// Shows a pane that the person chose by its key or by a press, and lets it take the keyboard.
    void choose(Pane pane);

    [[nodiscard]] Pane pane() const { return m_pane; }
    [[nodiscard]] const Shown &shown() const { return m_shown; }
    [[nodiscard]] const QString &file() const { return m_shown.file; }
    [[nodiscard]] bool isGated() const { return m_shown.file == gateFile(); }
    /// Whether the window is there.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }
    [[nodiscard]] bool asksBelow() const { return m_pane != Pane::advisor; }
    [[nodiscard]] bool didStart() const { return m_didStart; }

Q_SIGNALS:
    void paneChanged();
    /// The person chose the present pane.
    void paneChosen();
    void openChanged();
    void shownChanged();

private:
    [[nodiscard]] Shown presentlyShown() const;
    void setOpen(bool isOpen);
    void refresh();
    void followRequest();
    void startScanning();

    AppModel &m_model;
    FolderAccess &m_access;
    Background &m_background;
    Pane m_pane = Pane::warden;
    Shown m_shown;
    bool m_isOpen = false;
    bool m_didStart = false;
};

} // namespace Quillbrook
