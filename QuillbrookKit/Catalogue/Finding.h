#pragma once

// One rule matched at one existing path, with its measured size. A plain value, copied freely between
// threads; it holds a whole copy of its rule and neither a tree nor a service.

#include "Catalogue/ReclaimRule.h"

#include <QDateTime>

#include <string>

namespace Quillbrook {

struct Finding
{
    /// "{rule id}:{absolute path}".
    QString id{};
    ReclaimRule rule{};
    /// Absolute.
    QString path{};
    /// The path in raw bytes, for system calls.
    std::string rawPath{};
    /// Always at least 1.
    qint64 bytes = 0;
    std::optional<QDateTime> created{};
    std::optional<QDateTime> lastModified{};
    /// The path itself is a symbolic link: clearing it would free nothing here.
    bool redirectedOffVolume = false;
    /// The rule's `staleDays` have passed, or it has none.
    bool meetsStalenessForDeletion = false;
    /// What tells this finding from others of its rule where the host names its locations; absent where the
    /// path has to do.
    std::optional<QString> locationLabel{};
    /// The application that may be using it. Where it was found running, or nobody could tell, a rule that is
    /// safe has become a careful one. Empty for most findings.
    QString applicationId{};

    bool operator==(const Finding &) const = default;

    [[nodiscard]] static QString idFor(const QString &ruleId, const QString &path);
    /// The rule's title, followed by the location's label or, for a rule with several paths, by the last
    /// component of the path.
    [[nodiscard]] QString displayTitle() const;
    /// The path with a leading `home` shortened to "~". A plain prefix test by canonical equivalence, without
    /// regard to a separator behind it, kept on purpose.
    [[nodiscard]] QString friendlyPath(const QString &home) const;
    /// Whole calendar days since `lastModified`; absent without one.
    [[nodiscard]] std::optional<qint64> daysSinceTouched(const QDateTime &now) const;
};

} // namespace Quillbrook
