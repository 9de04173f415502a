#include "Advisor/Advisor.h"

#include "Advisor/AdvisorPrompt.h"
#include "Advisor/AvailabilityWords.h"
#include "Catalogue/StorageCatalogue.h"
#include "Core/AppModel.h"
#include "Core/Translation.h"
#include "Platform/Clock.h"

#include <QCoroFuture>
#include <QPointer>
#include <QtConcurrent>

#include <chrono>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

/// Loading a model takes from some seconds to a minute.
constexpr auto pauseWhileLoading = 1s;

template <typename... Handlers>
struct Overloaded : Handlers...
{
    using Handlers::operator()...;
};

} // namespace

Advisor::Advisor(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_languageModel(model.services().languageModel)
    , m_availability(tr("checking…"))
{
    m_again.setSingleShot(true);
    m_again.setInterval(pauseWhileLoading);
    connect(&m_again, &QTimer::timeout, this, &Advisor::refreshAvailability);
}

Advisor::~Advisor()
{
    m_stop.request_stop();
    m_pool.waitForDone();
}

void Advisor::refreshAvailability()
{
    findOut();
}

QCoro::Task<> Advisor::findOut()
{
    const QPointer self(this);
    const auto number = ++m_inquiry;
    const auto asking = m_languageModel.availability();
    const auto found = co_await asking;
    if (!self || m_inquiry != number)
        co_return;
    m_isAvailable = found.isAvailable();
    m_availability = AvailabilityWords::sentence(found);
    m_found = AvailabilityWords::answerer(found);
    if (found.problem == ModelAvailability::Problem::loading)
        m_again.start();
    Q_EMIT availabilityChanged();
}

void Advisor::ask(const QString &question)
{
    const auto trimmed = question.trimmed();
    if (trimmed.isEmpty())
        return;
    append(true, trimmed);
    ++m_turn;
    setProposal({});
    setHint({});
    setSuggestions({});
    if (m_isAvailable) {
        setThinking(true);
        respond(trimmed);
    } else {
        append(false,
            tr("The on-device model isn't available, so I can't chat — but everything on the other screens "
               "is produced without it and is unaffected."));
    }
}

// One round with the model. The conversation may be cleared while it is awaited; the reply lands in it all
// the same.
QCoro::Task<> Advisor::respond(QString question)
{
    const QPointer self(this);
    const auto findings = shownFindings();
    if (!m_session) {
        m_session = m_languageModel.startSession(instructions(findings));
        m_answerer = m_found;
    }
    const auto session = m_session;
    const auto asking = session->respond(question, m_stop.get_token());
    const auto reply = co_await asking;
    if (!self)
        co_return;
    if (reply) {
        const auto taking = take(*reply, findings);
        co_await taking;
        if (!self)
            co_return;
    } else {
        append(false, tr("The on-device model couldn't answer that. Your findings are unaffected."));
    }
    setThinking(false);
}

// The answer is shown as it came. What it points at is looked up among the findings, and nothing else of it
// is gone by.
QCoro::Task<> Advisor::take(AdvisorReply reply, QList<Finding> findings)
{
    const QPointer self(this);
    append(false, reply.answer);
    const auto host = m_model.scans().hostCatalogue();
    const auto subject = AdvisorChoices::subject(findings, reply.groupId);
    const auto related = subject
        ? AdvisorChoices::related(
            { .subject = *subject, .findings = findings, .named = reply.alsoConsiderGroupId, .host = &host })
        : std::nullopt;
    const bool isRefused = subject && subject->rule.safety == Safety::reportOnly;
    const bool isProposed = reply.proposesRemoval && subject && !isRefused;
    const auto turn = m_turn;
    const auto listing = isProposed ? itemsOf(*subject) : QtFuture::makeReadyFuture(QList<StorageItem>());
    const auto items = co_await listing;
    if (!self || m_turn != turn)
        co_return;
    setSuggestions(AdvisorChoices::suggestions({ .subject = subject,
        .related = related,
        .itemCount = subject ? m_model.scans().itemCount(*subject) : 0,
        .host = &host }));
    setHint(reply.proposesRemoval && subject ? std::nullopt : related);
    if (isProposed)
        setProposal(AdvisorProposal{ .finding = *subject, .items = items, .alsoConsider = related });
    if (reply.proposesRemoval && isRefused)
        append(false,
            tr("I can't offer to remove %1 — %2")
                .arg(translatedTableText(subject->rule.title),
                    translatedTableText(subject->rule.regenerates)));
}

// Listing items asks the disk for dates and names, which a slow one takes its time to tell.
QCoro::Task<> Advisor::offerItems(Finding finding)
{
    const QPointer self(this);
    const auto turn = ++m_turn;
    const auto listing = itemsOf(finding);
    const auto items = co_await listing;
    if (self && m_turn == turn)
        setProposal(AdvisorProposal{ .finding = finding, .items = items });
}

void Advisor::explain(const Finding &finding)
{
    append(false,
        translatedTableText(finding.rule.what) + u"\n\n"_s + translatedTableText(finding.rule.regenerates));
    setSuggestions({});
}

void Advisor::press(const AdvisorSuggestion &suggestion)
{
    // What is never suggested can't come here; if it does all the same, nothing happens.
    const auto mayGo = [](const Finding &finding) { return finding.rule.safety != Safety::reportOnly; };
    // By a copy: what is pressed may be the list's own, which changes.
    const auto kind = suggestion.kind;
    std::visit(Overloaded{
                   [&](const AdvisorAction::ChooseItem &choice) {
                       if (!mayGo(choice.finding))
                           return;
                       setHint({});
                       offerItems(choice.finding);
                   },
                   [&](const AdvisorAction::RemoveGroup &choice) {
                       if (!mayGo(choice.finding))
                           return;
                       ++m_turn;
                       setHint({});
                       setProposal(AdvisorProposal{ .finding = choice.finding });
                   },
                   [&](const AdvisorAction::MoveAway &choice) {
                       m_model.offloads().setOffloadFocus(choice.finding.rule.id);
                       m_model.navigation().setRequestedPane(Pane::offload);
                   },
                   [&](const AdvisorAction::Ask &choice) { ask(choice.question); },
                   [&](const AdvisorAction::Explain &choice) { explain(choice.finding); },
               },
        kind);
}

void Advisor::dismissProposal()
{
    ++m_turn;
    setProposal({});
}

void Advisor::stop()
{
    std::exchange(m_stop, std::stop_source()).request_stop();
}

void Advisor::reset()
{
    ++m_turn;
    m_session.reset();
    Q_EMIT availabilityChanged();
    m_messages.clear();
    Q_EMIT messagesChanged();
    setProposal({});
    setHint({});
    setSuggestions({});
}

QList<Finding> Advisor::shownFindings() const
{
    auto findings = m_model.scans().report() ? m_model.scans().report()->findings : QList<Finding>();
    findings.removeIf([](const Finding &finding) { return finding.redirectedOffVolume; });
    return findings;
}

QString Advisor::instructions(const QList<Finding> &findings) const
{
    const auto &scans = m_model.scans();
    AdvisorPrompt::Facts facts{ .volumeFree = m_model.volume().volumeFree(),
        .now = m_model.services().kit.clock.now(),
        .host = &scans.hostCatalogue() };
    for (const auto &finding : findings)
        facts.groups.append({ .finding = finding, .itemCount = scans.itemCount(finding) });
    return AdvisorPrompt::instructions(facts);
}

QFuture<QList<StorageItem>> Advisor::itemsOf(const Finding &finding)
{
    const auto &scans = m_model.scans();
    if (!scans.tree() || scans.rootNode() < 0)
        return QtFuture::makeReadyFuture(QList<StorageItem>());
    return QtConcurrent::run(&m_pool,
        [tree = scans.tree(), root = scans.rootNode(), host = scans.hostCatalogue(),
            services = CatalogueServices::of(m_model.services().kit), finding] {
            return StorageCatalogue::items(
                services, finding, *tree, root, { .homeDirectory = tree->path(root), .host = &host });
        });
}

void Advisor::append(bool fromUser, const QString &text)
{
    m_messages.append({ .fromUser = fromUser, .text = text });
    Q_EMIT messagesChanged();
}

void Advisor::setThinking(bool thinking)
{
    if (std::exchange(m_thinking, thinking) != thinking)
        Q_EMIT thinkingChanged();
}

void Advisor::setProposal(const std::optional<AdvisorProposal> &proposal)
{
    if (!proposal && !m_proposal)
        return;
    m_proposal = proposal;
    Q_EMIT proposalChanged();
}

void Advisor::setHint(const std::optional<Finding> &hint)
{
    if (std::exchange(m_hint, hint) != hint)
        Q_EMIT hintChanged();
}

void Advisor::setSuggestions(const QList<AdvisorSuggestion> &suggestions)
{
    if (m_suggestions.isEmpty() && suggestions.isEmpty())
        return;
    m_suggestions = suggestions;
    Q_EMIT suggestionsChanged();
}

} // namespace Quillbrook
