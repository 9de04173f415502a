#include "Advisor/AdvisorPrompt.h"

#include "Catalogue/StorageCatalogue.h"
#include "Scan/Format.h"

#include <QSet>
#include <QTextBoundaryFinder>

namespace Quillbrook::AdvisorPrompt {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestTitle = 60;

const auto opening
    = u"You answer questions about disk space on this Mac. These groups have already been measured for the "
      u"user:\n\n"_s;
const auto rules
    = u"\n\nRules:\n"
      u"- Refer to groups only by the ids above. Never invent a path or a command.\n"
      u"- Use the real sizes and counts when you answer. Be brief and concrete.\n"
      u"- Groups marked 'Report only' must never be offered for removal; explain why instead.\n"
      u"- Always answer in a full sentence that includes the number AND the size, copied exactly from the "
      u"list above. Do not do arithmetic — the counts are already correct. \"1\" is not an acceptable "
      u"answer.\n"
      u"- Set groupID to the group the question is about, every time, whether or not a removal was asked "
      u"for.\n"
      u"- Some groups list a `related` field. Those ids are the ONLY other groups you may bring up. When one "
      u"is present, set alsoConsiderGroupID to it and mention it as a further way to free space.\n"
      u"- Never mention anything that is not in the list above. If this Mac has no group for something, it "
      u"does not exist here — do not suggest checking it.\n"
      u"- You never delete anything. Setting proposesRemoval offers the user a list they choose from and "
      u"confirm themselves.\n\n"_s;

bool endsLine(QChar character)
{
    return (character >= u'\u000a' && character <= u'\u000d') || character == u'\u0085'
        || character == u'\u2028' || character == u'\u2029';
}

QString line(const Group &group, const Facts &facts, const QSet<QString> &listed)
{
    const auto &rule = group.finding.rule;
    auto text = u"- id="_s + rule.id + u" name=\""_s + sanitise(rule.title, longestTitle) + u"\" size="_s
        + Format::bytes(group.finding.bytes);
    if (group.itemCount != 0)
        text += u" count="_s + QString::number(group.itemCount);
    text += u" touched="_s + Format::ageInEnglish(group.finding.lastModified, facts.now) + u" policy="_s
        + label(rule.safety);
    auto related = StorageCatalogue::related(rule.id, facts.host);
    related.removeIf([&listed](const QString &id) { return !listed.contains(id); });
    if (!related.isEmpty())
        text += u" related="_s + related.join(u',');
    return text;
}

} // namespace

QString instructions(const Facts &facts)
{
    QSet<QString> listed;
    for (const auto &group : facts.groups)
        listed.insert(group.finding.rule.id);
    QStringList lines;
    for (const auto &group : facts.groups)
        lines.append(line(group, facts, listed));
    return opening + lines.join(u'\n') + rules + u"Free space right now: "_s + Format::bytes(facts.volumeFree)
        + u".\n"_s;
}

QString sanitise(const QString &text, qsizetype limit)
{
    auto line = text;
    line.replace(u'\n', u' ').replace(u'"', u'\'');
    line.removeIf(endsLine);
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, line);
    for (qsizetype seen = 0; seen < limit; ++seen) {
        if (characters.toNextBoundary() < 0)
            return line;
    }
    const auto end = std::max<qsizetype>(characters.position(), 0);
    return end >= line.size() ? line : line.first(end) + u'…';
}

} // namespace Quillbrook::AdvisorPrompt
