#pragma once

// What the program makes of a reply: which finding it is about, what else may be mentioned, and what is
// offered to press. All of it comes from what was measured, whatever the model wrote. Pure functions.

#include "Catalogue/Finding.h"
#include "Catalogue/StorageItem.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>
#include <variant>

namespace Quillbrook {

struct HostCatalogue;

struct AdvisorMessage
{
    QUuid id = QUuid::createUuid();
    bool fromUser = false;
    QString text{};
};

/// What pressing a suggestion does.
namespace AdvisorAction {

/// Offers the items of a finding to choose one from.
struct ChooseItem
{
    Finding finding{};
};

/// Offers all of a finding.
struct RemoveGroup
{
    Finding finding{};
};

/// Shows the screen that moves things to another drive.
struct MoveAway
{
    Finding finding{};
};

struct Ask
{
    QString question{};
};

/// Tells why a finding is never offered.
struct Explain
{
    Finding finding{};
};

} // namespace AdvisorAction

/// Something to press after an answer.
struct AdvisorSuggestion
{
    using Kind = std::variant<AdvisorAction::ChooseItem, AdvisorAction::RemoveGroup, AdvisorAction::MoveAway,
        AdvisorAction::Ask, AdvisorAction::Explain>;

    QUuid id = QUuid::createUuid();
    QString label{};
    Kind kind{};
};

/// A removal that is on offer: nothing happens until the person chooses and confirms it.
struct AdvisorProposal
{
    QUuid id = QUuid::createUuid();
    Finding finding{};
    /// Empty: all of the finding is on offer. Else one of these has to be chosen.
    QList<StorageItem> items{};
    std::optional<Finding> alsoConsider{};
};

namespace AdvisorChoices {

/// The finding of exactly that rule; absent for an id that is empty, invented or out of date.
[[nodiscard]] std::optional<Finding> subject(const QList<Finding> &findings, const QString &ruleId);

struct Relation
{
    const Finding &subject;
    const QList<Finding> &findings;
    /// The rule that the model named, or nothing.
    QString named{};
    /// Null: the built-in relations alone.
    const HostCatalogue *host = nullptr;
};

/// What is worth mentioning beside the subject: the model's word counts only within the catalogue's own
/// relation.
[[nodiscard]] std::optional<Finding> related(const Relation &relation);

struct Situation
{
    std::optional<Finding> subject{};
    std::optional<Finding> related{};
    /// Of the subject.
    qsizetype itemCount = 0;
    const HostCatalogue *host = nullptr;
};

[[nodiscard]] QList<AdvisorSuggestion> suggestions(const Situation &situation);

} // namespace AdvisorChoices

} // namespace Quillbrook
