#pragma once

// What the screen "Apps" shows and does: what is installed, and what applications that are gone left behind.
// Main thread only; the model outlives it.

#include "Core/AppsStore.h"
#include "Screens/Apps/AppsListModel.h"
#include "Screens/Apps/UninstallSheetState.h"
#include "Screens/PaneState.h"

#include <QSet>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class AppsState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// One of `Tab`, in its order.
    Q_PROPERTY(int tab READ tab WRITE setTab NOTIFY tabChanged FINAL)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged FINAL)
    Q_PROPERTY(Quillbrook::AppsListModel *rows READ rows CONSTANT FINAL)
    /// The sentence of a list without rows; empty otherwise.
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY rowsChanged FINAL)
    /// What is still being measured; empty when nothing is.
    Q_PROPERTY(QString progress READ progress NOTIFY progressChanged FINAL)
    /// Something is being looked for or measured, which can be stopped; or was stopped, and can go on.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY progressChanged FINAL)
    Q_PROPERTY(bool isStopped READ isStopped NOTIFY progressChanged FINAL)
    Q_PROPERTY(QString loadAction READ loadAction NOTIFY progressChanged FINAL)
    /// How far that is, from 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY progressChanged FINAL)
    Q_PROPERTY(Quillbrook::AppsListModel *orphans READ orphans CONSTANT FINAL)
    Q_PROPERTY(QString orphansMessage READ orphansMessage NOTIFY orphansChanged FINAL)
    Q_PROPERTY(bool hasOrphans READ hasOrphans NOTIFY orphansChanged FINAL)
    /// The bar under the orphans: how many are ticked, and what they come to.
    Q_PROPERTY(bool hasChosen READ hasChosen NOTIFY orphansChanged FINAL)
    Q_PROPERTY(QString chosenCount READ chosenCount NOTIFY orphansChanged FINAL)
    Q_PROPERTY(QString chosenSize READ chosenSize NOTIFY orphansChanged FINAL)
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY orphansChanged FINAL)
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY orphansChanged FINAL)
    Q_PROPERTY(Quillbrook::UninstallSheetState *sheet READ sheet CONSTANT FINAL)
    /// What became of what was last removed here, a line each.
    Q_PROPERTY(QString log READ log NOTIFY logChanged FINAL)

public:
    enum class Tab { installed, orphans };

    explicit AppsState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] int tab() const { return int(m_tab); }
    void setTab(int tab);
    [[nodiscard]] const QString &filter() const { return m_filter; }
    void setFilter(const QString &filter);
    [[nodiscard]] AppsListModel *rows() { return &m_rows; }
    [[nodiscard]] QString emptyMessage() const;
    [[nodiscard]] QString progress() const;
    [[nodiscard]] bool isLoading() const { return m_store.isLoading(); }
    [[nodiscard]] bool isStopped() const { return m_store.isStopped(); }
    [[nodiscard]] QString loadAction() const;
    [[nodiscard]] double fraction() const;
    [[nodiscard]] AppsListModel *orphans() { return &m_orphans; }
    [[nodiscard]] QString orphansMessage() const;
    [[nodiscard]] bool hasOrphans() const { return !m_store.orphans().isEmpty(); }
    [[nodiscard]] bool hasChosen() const { return !chosen().empty(); }
    [[nodiscard]] QString chosenCount() const;
    [[nodiscard]] QString chosenSize() const;
    [[nodiscard]] bool isRemoving() const { return m_removing; }
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] UninstallSheetState *sheet() { return &m_sheet; }
    [[nodiscard]] QString log() const;
    [[nodiscard]] const AppsStore &store() const { return m_store; }

    /// Does what `loadAction` says.
    Q_INVOKABLE void stopOrGoOn();
    /// Shows an application in the file manager.
    Q_INVOKABLE void reveal(int row);
    /// Opens the sheet of an application.
    Q_INVOKABLE void askToUninstall(int row);
    /// Ticks an orphan, or unticks it.
    Q_INVOKABLE void toggleOrphan(int row);
    Q_INVOKABLE void toggleEvidence(int row);
    Q_INVOKABLE void revealOrphan(int row);
    Q_INVOKABLE void clearChosen();
    /// Moves what is ticked to the Trash.
    Q_INVOKABLE void removeChosen();

Q_SIGNALS:
    void tabChanged();
    void filterChanged();
    void rowsChanged();
    void progressChanged();
    void orphansChanged();
    void logChanged();

protected:
    void appear() override;
    /// What was chosen and typed is lost.
    void disappear() override;

private:
    void refreshRows();
    void refreshSize(qsizetype index);
    void refreshOrphans();
    [[nodiscard]] QList<InstalledApp> matching() const;
    [[nodiscard]] const InstalledApp *appAt(int row) const;
    [[nodiscard]] const Orphan *orphanAt(int row) const;
    [[nodiscard]] std::vector<Orphan> chosen() const;

    AppModel &m_model;
    AppsStore m_store;
    UninstallSheetState m_sheet;
    AppsListModel m_rows;
    AppsListModel m_orphans;
    Tab m_tab = Tab::installed;
    QString m_filter;
    QSet<QString> m_chosen;
    QSet<QString> m_open;
    bool m_removing = false;
    /// Lines of the log that were there when the screen appeared.
    qsizetype m_linesBefore = 0;
};

} // namespace Quillbrook
