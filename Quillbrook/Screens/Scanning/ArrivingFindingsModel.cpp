#include "Screens/Scanning/ArrivingFindingsModel.h"

#include "Core/Translation.h"
#include "Scan/Format.h"

namespace Quillbrook {

void ArrivingFindingsModel::setFindings(const QList<Finding> &findings)
{
    if (!isAmong(findings)) {
        beginResetModel();
        m_findings = findings;
        endResetModel();
        return;
    }
    for (int row = 0; row < findings.size(); ++row) {
        if (row < m_findings.size() && m_findings.at(row).id == findings.at(row).id)
            continue;
        beginInsertRows({}, row, row);
        m_findings.insert(row, findings.at(row));
        endInsertRows();
    }
}

// Whether all that is here stands there too, in the same order and unchanged.
bool ArrivingFindingsModel::isAmong(const QList<Finding> &findings) const
{
    qsizetype met = 0;
    for (const auto &finding : findings)
        if (met < m_findings.size() && m_findings.at(met) == finding)
            ++met;
    return met == m_findings.size();
}

int ArrivingFindingsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_findings.size());
}

QVariant ArrivingFindingsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_findings.size())
        return {};
    const auto &finding = m_findings.at(index.row());
    switch (Role(role)) {
    case Role::title:
        return translatedTableText(finding.rule.title);
    case Role::size:
        return Format::bytes(finding.bytes);
    }
    return role == Qt::DisplayRole ? QVariant(translatedTableText(finding.rule.title)) : QVariant();
}

QHash<int, QByteArray> ArrivingFindingsModel::roleNames() const
{
    return { { int(Role::title), "title" }, { int(Role::size), "size" } };
}

} // namespace Quillbrook
