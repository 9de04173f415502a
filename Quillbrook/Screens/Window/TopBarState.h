#pragma once

// What the bar above the panes tells of the last scan, and what its one button does. Main thread only; the
// model outlives it.

#include "Core/ScanDriver.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class TopBarState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// How much the last scan saw in which time; empty before one.
    Q_PROPERTY(QString summary READ summary NOTIFY summaryChanged FINAL)
    /// How much of it could not be measured, and counts as nothing; empty where all could.
    Q_PROPERTY(QString shortfall READ shortfall NOTIFY shortfallChanged FINAL)
    /// What the button is called now.
    Q_PROPERTY(QString actionText READ actionText NOTIFY actionTextChanged FINAL)
    /// Not while things go, which a scan would have to wait for.
    Q_PROPERTY(bool canAct READ canAct NOTIFY actionTextChanged FINAL)

public:
    explicit TopBarState(AppModel &model, QObject *parent = nullptr);

    /// The words for a scan that saw `fileCount` files in `seconds`; empty where no time has been taken.
    [[nodiscard]] static QString summaryOf(qsizetype fileCount, double seconds);
    [[nodiscard]] static QString shortfallOf(const ScanDriver::Shortfall &shortfall);
    /// Stops the scan that runs, else starts one in the present scope.
    Q_INVOKABLE void act();

    [[nodiscard]] QString summary() const;
    [[nodiscard]] QString shortfall() const;
    [[nodiscard]] QString actionText() const;
    [[nodiscard]] bool canAct() const;

Q_SIGNALS:
    void summaryChanged();
    void shortfallChanged();
    void actionTextChanged();

private:
    [[nodiscard]] bool isScanning() const;

    AppModel &m_model;
};

} // namespace Quillbrook
