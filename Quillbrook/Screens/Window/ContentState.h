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

    /// What stands on the right side.
    Q_PROPERTY(View view READ view NOTIFY viewChanged FINAL)
    /// The words of the notice; empty unless `view` is `Notice`.
    Q_PROPERTY(QString noticeTitle READ noticeTitle NOTIFY viewChanged FINAL)
    Q_PROPERTY(QString noticeMessage READ noticeMessage NOTIFY viewChanged FINAL)
    /// The question field stands under every pane but the conversation itself.
    Q_PROPERTY(bool asksBelow READ asksBelow NOTIFY paneChanged FINAL)

public:
    /// The gate, the scanning view, a notice, or one of the panes that there are.
    enum class View { Gate, Scanning, Notice, Warden, Map, Largest, Search };
    Q_ENUM(View)

    /// What stands on the right side, with the words of a notice.
    struct Shown
    {
        View view = View::Notice;
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

    /// To be called whenever the window's content appears; the start action runs the first time only.
    Q_INVOKABLE void appear();
    /// Lets the person pick their home folder, and measures it then. Returns at once.
    Q_INVOKABLE void chooseHomeFolder();
    /// Measures what may be read now, in the present scope, and gives up a scan of what was before.
    void rescan();
    void setPane(Pane pane);

    [[nodiscard]] Pane pane() const { return m_pane; }
    [[nodiscard]] View view() const { return m_shown.view; }
    [[nodiscard]] const QString &noticeTitle() const { return m_shown.title; }
    [[nodiscard]] const QString &noticeMessage() const { return m_shown.message; }
    [[nodiscard]] bool asksBelow() const { return m_pane != Pane::advisor; }
    [[nodiscard]] bool didStart() const { return m_didStart; }

Q_SIGNALS:
    void paneChanged();
    void viewChanged();

private:
    [[nodiscard]] static Shown shownForPane(Pane pane);
    [[nodiscard]] Shown presentlyShown() const;
    void refresh();
    void followRequest();
    void startScanning();

    AppModel &m_model;
    FolderAccess &m_access;
    Background &m_background;
    Pane m_pane = Pane::warden;
    Shown m_shown;
    bool m_didStart = false;
};

} // namespace Quillbrook
