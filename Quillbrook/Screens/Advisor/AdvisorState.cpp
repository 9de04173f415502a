#include "Screens/Advisor/AdvisorState.h"

#include "Advisor/Advisor.h"
#include "Core/AppModel.h"

#include <algorithm>
#include <chrono>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

/// An answer and what the program adds to it come one right after the other, and are told as one.
constexpr auto pauseBeforeTelling = 50ms;

} // namespace

AdvisorState::AdvisorState(AppModel &model, Advisor &advisor, QObject *parent)
    : PaneState(parent)
    , m_model(model)
    , m_advisor(advisor)
    , m_messages(advisor)
    , m_proposal(model, advisor)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseBeforeTelling);
    connect(&m_pause, &QTimer::timeout, this, &AdvisorState::announce);
    connect(&m_advisor, &Advisor::messagesChanged, this, &AdvisorState::awaitMore);
    connect(&m_advisor, &Advisor::availabilityChanged, this, &AdvisorState::availabilityChanged);
    connect(&m_advisor, &Advisor::thinkingChanged, this, &AdvisorState::thinkingChanged);
    connect(&m_advisor, &Advisor::thinkingChanged, this, &AdvisorState::canAskChanged);
    connect(&m_advisor, &Advisor::messagesChanged, this, &AdvisorState::messagesChanged);
    connect(&m_advisor, &Advisor::suggestionsChanged, this, &AdvisorState::suggestionsChanged);
    connect(&m_advisor, &Advisor::hintChanged, this, &AdvisorState::hintChanged);
    connect(&m_model.questions(), &QuestionDriver::suggestedQuestionsChanged, this,
        &AdvisorState::questionsChanged);
}

void AdvisorState::appear()
{
    m_advisor.refreshAvailability();
    m_pause.start();
}

// What comes from now on is told when the person is back.
void AdvisorState::disappear()
{
    setAnnouncement({});
}

void AdvisorState::awaitMore()
{
    setAnnouncement({});
    m_told = std::min(m_told, m_advisor.messages().size());
    m_pause.start();
}

void AdvisorState::announce()
{
    if (!shown())
        return;
    QStringList lines;
    const auto &messages = m_advisor.messages();
    for (; m_told < messages.size(); ++m_told) {
        if (!messages.at(m_told).fromUser)
            lines.append(messages.at(m_told).text);
    }
    if (!lines.isEmpty())
        setAnnouncement(lines.join(u'\n'));
}

void AdvisorState::setAnnouncement(const QString &announcement)
{
    if (m_announcement == announcement)
        return;
    m_announcement = announcement;
    Q_EMIT announcementChanged();
}

void AdvisorState::recheck()
{
    m_advisor.refreshAvailability();
}

void AdvisorState::setDraft(const QString &draft)
{
    if (m_draft == draft)
        return;
    m_draft = draft;
    Q_EMIT draftChanged();
    Q_EMIT canAskChanged();
}

void AdvisorState::submit()
{
    const auto question = m_draft;
    setDraft({});
    m_advisor.ask(question);
}

void AdvisorState::askSuggested(int index)
{
    m_advisor.ask(questions().value(index));
}

void AdvisorState::press(int index)
{
    // A list of our own, which stays as it is while the press changes that of the conversation.
    const auto suggestions = m_advisor.suggestions();
    if (index >= 0 && index < suggestions.size())
        m_advisor.press(suggestions.at(index));
}

void AdvisorState::clearHint()
{
    const auto hint = m_advisor.hint();
    ProposalState::askToClear(m_advisor, hint);
}

void AdvisorState::stop()
{
    m_advisor.stop();
}

void AdvisorState::clear()
{
    m_advisor.reset();
}

QString AdvisorState::availability() const
{
    return m_advisor.availability();
}

QString AdvisorState::answerer() const
{
    return m_advisor.answerer();
}

bool AdvisorState::isAvailable() const
{
    return m_advisor.isAvailable();
}

bool AdvisorState::thinking() const
{
    return m_advisor.thinking();
}

bool AdvisorState::isEmpty() const
{
    return m_advisor.messages().isEmpty();
}

QStringList AdvisorState::questions() const
{
    return m_model.questions().suggestedQuestions();
}

QStringList AdvisorState::suggestions() const
{
    QStringList labels;
    for (const auto &suggestion : m_advisor.suggestions())
        labels.append(suggestion.label);
    return labels;
}

QString AdvisorState::hint() const
{
    return ProposalState::alsoConsiderLine(m_advisor.hint());
}

bool AdvisorState::canAsk() const
{
    return !m_draft.trimmed().isEmpty() && !m_advisor.thinking();
}

} // namespace Quillbrook
