#pragma once

// Reads a listing of catalogue rules that was written down apart from the code: a "[id]" line for each rule,
// then its fields, one "name: value" a line.

#include "Catalogue/ReclaimRule.h"

#include <QFile>

#include <vector>

namespace Quillbrook {

/// Empty when the file can't be read; an unknown line gives a rule with that line as its id, which no table
/// has.
[[nodiscard]] inline std::vector<ReclaimRule> readRuleListing(const QString &path)
{
    std::vector<ReclaimRule> rules;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return rules;
    for (const auto &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        const auto value = line.section(QStringLiteral(": "), 1);
        if (line.startsWith(u'['))
            rules.push_back({ .id = line.sliced(1).chopped(1) });
        else if (line.startsWith(u"title: "))
            rules.back().title = value;
        else if (line.startsWith(u"what: "))
            rules.back().what = value;
        else if (line.startsWith(u"regenerates: "))
            rules.back().regenerates = value;
        else if (line.startsWith(u"path: "))
            rules.back().paths.append(value);
        else if (line == u"safety: safe")
            rules.back().safety = Safety::safe;
        else if (line == u"safety: careful")
            rules.back().safety = Safety::careful;
        else if (line == u"safety: reportOnly")
            rules.back().safety = Safety::reportOnly;
        else if (line.startsWith(u"staleDays: ") && value != u"-")
            rules.back().staleDays = value.toInt();
        else if (!line.startsWith(u"staleDays: "))
            rules.push_back({ .id = line });
    }
    return rules;
}

} // namespace Quillbrook
