#pragma once

// What the scanning view shows of a scan that runs. Main thread only.

#include "Catalogue/Finding.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class ScanProgress : public QObject
{
    Q_OBJECT
    QML_ANONYMOUS

    /// The bar, 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY fractionChanged FINAL)
    /// How much has been seen, in words; empty at first.
    Q_PROPERTY(QString counts READ counts NOTIFY countsChanged FINAL)

public:
    using QObject::QObject;

    [[nodiscard]] double fraction() const { return m_fraction; }
    /// What is being measured now; empty before anything is known.
    [[nodiscard]] const QString &detail() const { return m_detail; }
    [[nodiscard]] const QString &counts() const { return m_counts; }
    /// What has been found so far, largest first.
    [[nodiscard]] const QList<Finding> &findings() const { return m_findings; }
    /// Each tells observers only on a change.
    void setFraction(double fraction);
    void setDetail(const QString &detail);
    void setCounts(const QString &counts);
    void setFindings(const QList<Finding> &findings);
    void reset();

Q_SIGNALS:
    void fractionChanged();
    void detailChanged();
    void countsChanged();
    void findingsChanged();

private:
    double m_fraction = 0;
    QString m_detail;
    QString m_counts;
    QList<Finding> m_findings;
};

} // namespace Quillbrook
