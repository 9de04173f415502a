#include "Catalogue/Finding.h"

#include "Scan/WholeDays.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

QString Finding::idFor(const QString &ruleId, const QString &path)
{
    return ruleId + u':' + path;
}

QString Finding::displayTitle() const
{
    const auto separator = u" \u00B7 "_s;
    if (locationLabel)
        return rule.title + separator + *locationLabel;
    if (rule.paths.size() < 2)
        return rule.title;
    return rule.title + separator + path.section(u'/', -1, -1, QString::SectionSkipEmpty);
}

QString Finding::friendlyPath(const QString &home) const
{
    const auto composedPath = path.normalized(QString::NormalizationForm_C);
    const auto composedHome = home.normalized(QString::NormalizationForm_C);
    return composedPath.startsWith(composedHome) ? u'~' + composedPath.sliced(composedHome.size()) : path;
}

std::optional<qint64> Finding::daysSinceTouched(const QDateTime &now) const
{
    if (!lastModified)
        return std::nullopt;
    return wholeDays(*lastModified, now);
}

} // namespace Quillbrook
