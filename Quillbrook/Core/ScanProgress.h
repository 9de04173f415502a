#pragma once

// What the scanning view shows of a scan in hand. Main thread only.

#include "Catalogue/Finding.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Quillbrook {

class ScanProgress : public QObject
{
    Q_OBJECT

    /// The bar, 0 to 1.
    Q_PROPERTY(double fraction READ fraction NOTIFY fractionChanged)
    /// What is being measured now; empty before anything is known.
    Q_PROPERTY(QString detail READ detail NOTIFY detailChanged)
    /// How much has been seen, in words.
    Q_PROPERTY(QString counts READ counts NOTIFY countsChanged)

public:
    using QObject::QObject;

    [[nodiscard]] double fraction() const { return m_fraction; }
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
