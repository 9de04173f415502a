#pragma once

// What the scanning view tells of the scan in hand. Main thread only; the progress outlives it.

#include "Screens/Scanning/ArrivingFindingsModel.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class ScanProgress;

class ScanningState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// What is being measured, in words at any time.
    Q_PROPERTY(QString title READ title NOTIFY titleChanged FINAL)
    /// The bar, 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY fractionChanged FINAL)
    /// How much has been seen; empty at first.
    Q_PROPERTY(QString counts READ counts NOTIFY countsChanged FINAL)

    /// What has been found so far, largest first.
    Q_PROPERTY(Quillbrook::ArrivingFindingsModel *findings READ findings CONSTANT FINAL)

public:
    explicit ScanningState(ScanProgress &progress, QObject *parent = nullptr);

    [[nodiscard]] QString title() const;
    [[nodiscard]] double fraction() const;
    [[nodiscard]] QString counts() const;
    [[nodiscard]] ArrivingFindingsModel *findings() { return &m_findings; }

Q_SIGNALS:
    void titleChanged();
    void fractionChanged();
    void countsChanged();

private:
    void takeFindings();

    ScanProgress &m_progress;
    ArrivingFindingsModel m_findings;
};

} // namespace Quillbrook
