#pragma once

// What the scanning view shows of the scan that runs. Main thread only; the progress outlives it.

#include "Core/ScanProgress.h"
#include "Screens/Scanning/ArrivingFindingsModel.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class ScanningState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// What is being measured, in words at any time.
    Q_PROPERTY(QString title READ title NOTIFY titleChanged FINAL)
    Q_PROPERTY(Quillbrook::ScanProgress *progress READ progress CONSTANT FINAL)
    /// What has been found so far, largest first.
    Q_PROPERTY(Quillbrook::ArrivingFindingsModel *findings READ findings CONSTANT FINAL)

public:
    explicit ScanningState(ScanProgress &progress, QObject *parent = nullptr);

    [[nodiscard]] QString title() const;
    [[nodiscard]] ScanProgress *progress() const { return &m_progress; }
    [[nodiscard]] ArrivingFindingsModel *findings() { return &m_findings; }

Q_SIGNALS:
    void titleChanged();

private:
    void takeFindings();

    ScanProgress &m_progress;
    ArrivingFindingsModel m_findings;
};

} // namespace Quillbrook
