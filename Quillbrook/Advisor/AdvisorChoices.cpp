#include "Advisor/AdvisorChoices.h"

#include "Catalogue/StorageCatalogue.h"
#include "Core/Translation.h"
#include "Offload/Suitability.h"
#include "Scan/Format.h"

#include <QCoreApplication>

#include <algorithm>

namespace Quillbrook::AdvisorChoices {

namespace {

constexpr qsizetype mostSuggestions = 4;
/// What the program mentions by itself is larger than this.
constexpr qint64 smallBytes = qint64{ 512 } * 1024 * 1024;

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Advisor)
};

template <typename Predicate>
std::optional<Finding> first(const QList<Finding> &findings, Predicate predicate)
{
    const auto found = std::ranges::find_if(findings, predicate);
    return found == findings.end() ? std::nullopt : std::optional(*found);
}

QList<AdvisorSuggestion> generalSuggestions()
{
    using Ask = AdvisorAction::Ask;
    return {
        { .label = Words::tr("What's safe to delete?"),
            .kind = Ask{ Words::tr("What is safe to delete right now?") } },
        { .label = Words::tr("What's using the most space?"),
            .kind = Ask{ Words::tr("What is using the most space?") } },
        { .label = Words::tr("What can I move to another drive?"),
            .kind = Ask{ Words::tr("What could I move to an external drive?") } },
    };
}

void appendRemovals(QList<AdvisorSuggestion> &suggestions, const Finding &subject, qsizetype itemCount)
{
    if (itemCount > 0)
        suggestions.append(
            { .label = itemCount == 1 ? Words::tr("Pick it and delete") : Words::tr("Pick one to delete"),
                .kind = AdvisorAction::ChooseItem{ subject } });
    if (itemCount != 1)
        suggestions.append({ .label = Words::tr("Delete all · %1").arg(Format::bytes(subject.bytes)),
            .kind = AdvisorAction::RemoveGroup{ subject } });
}

} // namespace

std::optional<Finding> subject(const QList<Finding> &findings, const QString &ruleId)
{
    return first(findings, [&ruleId](const Finding &finding) { return finding.rule.id == ruleId; });
}

std::optional<Finding> related(const Relation &relation)
{
    const auto candidates = StorageCatalogue::related(relation.subject.rule.id, relation.host);
    if (!relation.named.isEmpty() && candidates.contains(relation.named)) {
        if (auto found = subject(relation.findings, relation.named))
            return found;
    }
    return first(relation.findings, [&candidates](const Finding &finding) {
        return candidates.contains(finding.rule.id) && finding.rule.safety != Safety::reportOnly
            && finding.bytes > smallBytes;
    });
}

QList<AdvisorSuggestion> suggestions(const Situation &situation)
{
    if (!situation.subject)
        return generalSuggestions();
    const auto &subject = *situation.subject;
    QList<AdvisorSuggestion> suggestions;
    if (subject.rule.safety == Safety::reportOnly)
        suggestions.append({ .label = Words::tr("Why not?"), .kind = AdvisorAction::Explain{ subject } });
    else
        appendRemovals(suggestions, subject, situation.itemCount);
    if (Offload::suitability(subject.rule.id, situation.host).isCold())
        suggestions.append(
            { .label = Words::tr("Move it to another drive"), .kind = AdvisorAction::MoveAway{ subject } });
    if (situation.related) {
        const auto title = translatedTableText(situation.related->rule.title);
        suggestions.append({ .label = Words::tr("What about %1?").arg(title.toLower()),
            .kind = AdvisorAction::Ask{ Words::tr("Tell me about the %1").arg(title) } });
    }
    return suggestions.first(std::min(suggestions.size(), mostSuggestions));
}

} // namespace Quillbrook::AdvisorChoices
