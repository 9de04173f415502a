#pragma once

// The sheet of one application: what it wrote elsewhere, what of that is ticked, and what the answer does.
// Main thread only; the model outlives it.

#include "Core/UninstallDriver.h"
#include "Screens/Apps/AppsListModel.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>
#include <QtQmlIntegration>

#include <optional>

namespace Quillbrook {

class AppModel;

class UninstallSheetState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// The sheet is open.
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY openChanged FINAL)
    Q_PROPERTY(QString title READ title NOTIFY openChanged FINAL)
    Q_PROPERTY(QString icon READ icon NOTIFY openChanged FINAL)
    Q_PROPERTY(QString origin READ origin NOTIFY openChanged FINAL)
    /// What has been found is known.
    Q_PROPERTY(bool isPlanned READ isPlanned NOTIFY changed FINAL)
    /// Why nothing can be removed; empty where something can.
    Q_PROPERTY(QString blocked READ blocked NOTIFY changed FINAL)
    /// A software centre can be opened at the application.
    Q_PROPERTY(bool hasStorePage READ hasStorePage NOTIFY changed FINAL)
    Q_PROPERTY(QString itself READ itself NOTIFY changed FINAL)
    Q_PROPERTY(QString itselfSize READ itselfSize NOTIFY changed FINAL)
    /// The sentence of an application that wrote nothing elsewhere; empty otherwise.
    Q_PROPERTY(QString nothingElse READ nothingElse NOTIFY changed FINAL)
    /// The headings of both lists; empty where there is nothing under them.
    Q_PROPERTY(QString heading READ heading NOTIFY changed FINAL)
    Q_PROPERTY(QString lockedHeading READ lockedHeading NOTIFY changed FINAL)
    Q_PROPERTY(Quillbrook::AppsListModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::AppsListModel *lockedRows READ lockedRows CONSTANT FINAL)
    Q_PROPERTY(QString total READ total NOTIFY changed FINAL)
    Q_PROPERTY(bool isWorking READ isWorking NOTIFY changed FINAL)
    Q_PROPERTY(bool canUninstall READ canUninstall NOTIFY changed FINAL)
    Q_PROPERTY(QString action READ action NOTIFY changed FINAL)
    /// The question before it goes.
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY openChanged FINAL)
    Q_PROPERTY(QString confirmMessage READ confirmMessage NOTIFY changed FINAL)
    Q_PROPERTY(QString confirmAction READ confirmAction NOTIFY openChanged FINAL)

public:
    explicit UninstallSheetState(AppModel &model, QObject *parent = nullptr);

    /// Opens for `app`; `all` are those that are listed.
    void open(const InstalledApp &app, const QList<InstalledApp> &all);

    [[nodiscard]] bool isOpen() const { return m_app.has_value(); }
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString icon() const;
    [[nodiscard]] QString origin() const;
    [[nodiscard]] bool isPlanned() const { return m_plan.has_value(); }
    [[nodiscard]] QString blocked() const;
    [[nodiscard]] bool hasStorePage() const;
    [[nodiscard]] QString itself() const;
    [[nodiscard]] QString itselfSize() const;
    [[nodiscard]] QString nothingElse() const;
    [[nodiscard]] QString heading() const;
    [[nodiscard]] QString lockedHeading() const;
    [[nodiscard]] AppsListModel *rows() { return &m_rows; }
    [[nodiscard]] AppsListModel *lockedRows() { return &m_lockedRows; }
    [[nodiscard]] QString total() const;
    [[nodiscard]] bool isWorking() const { return m_working; }
    [[nodiscard]] bool canUninstall() const;
    [[nodiscard]] QString action() const;
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] QString confirmMessage() const;
    [[nodiscard]] QString confirmAction() const;

    /// Ticks a leftover, or unticks it.
    Q_INVOKABLE void toggle(int row);
    /// Shows what speaks for a row, or no longer.
    Q_INVOKABLE void toggleEvidence(int row, bool isLocked);
    Q_INVOKABLE void openStorePage();
    /// Takes the application away with what is ticked, and closes when that has been tried.
    Q_INVOKABLE void uninstall();
    /// Closes the sheet, unless something is being removed.
    Q_INVOKABLE void dismiss();

Q_SIGNALS:
    void openChanged();
    void changed();
    /// An attempt has ended.
    void uninstalled();

private:
    QCoro::Task<> work(InstalledApp app, QList<InstalledApp> all);
    void refresh();
    [[nodiscard]] std::vector<Leftover> chosenLeftovers() const;
    [[nodiscard]] bool isBlocked() const;
    [[nodiscard]] qsizetype count(bool locked) const;

    AppModel &m_model;
    AppsListModel m_rows;
    AppsListModel m_lockedRows;
    std::optional<InstalledApp> m_app;
    std::optional<UninstallPlan> m_plan;
    QSet<QString> m_chosen;
    QSet<QString> m_open;
    bool m_working = false;
    /// Counts openings: a plan of an earlier one is out of date.
    int m_opening = 0;
};

} // namespace Quillbrook
