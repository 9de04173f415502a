#pragma once

// The conversation with the language model about the findings of the last scan, and what the program does
// with each reply. The model may write a sentence and point at a group, and nothing else: whatever is offered
// then is built from what was measured, and ends in a card on which the person chooses and confirms. Main
// thread only; the model of the application outlives it.

#include "Advisor/AdvisorChoices.h"
#include "Advisor/LanguageModel.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>

#include <memory>
#include <optional>
#include <stop_token>

namespace Quillbrook {

class AppModel;

class Advisor : public QObject
{
    Q_OBJECT

public:
    explicit Advisor(AppModel &model, QObject *parent = nullptr);
    /// Gives up what is awaited, and waits for what runs on the pool.
    ~Advisor() override;

    /// Finds out whether a model can be asked. Returns at once; what was known stays until it is known anew.
    /// While a server is loading its model, it is found out again every now and then.
    void refreshAvailability();
    /// The one way in for a question. Returns at once; the reply follows.
    void ask(const QString &question);
    /// Tells by the catalogue's own text why a finding is never offered, without the model.
    void explain(const Finding &finding);
    /// Does what a suggestion stands for.
    void press(const AdvisorSuggestion &suggestion);
    /// Takes the card away.
    void dismissProposal();
    /// Makes the questions that are awaited fail.
    void stop();
    /// Forgets the conversation, with what the model has been told.
    void reset();

    /// Oldest first.
    [[nodiscard]] const QList<AdvisorMessage> &messages() const { return m_messages; }
    /// A reply is awaited.
    [[nodiscard]] bool thinking() const { return m_thinking; }
    /// The line of the banner.
    [[nodiscard]] const QString &availability() const { return m_availability; }
    [[nodiscard]] bool isAvailable() const { return m_isAvailable; }
    /// Which program and model answers, in this conversation once it has begun; empty where none does.
    [[nodiscard]] const QString &answerer() const
    {
        return m_isAvailable && m_session ? m_answerer : m_found;
    }
    /// The card that is on offer.
    [[nodiscard]] const std::optional<AdvisorProposal> &proposal() const { return m_proposal; }
    /// A group to mention under the answer.
    [[nodiscard]] const std::optional<Finding> &hint() const { return m_hint; }
    [[nodiscard]] const QList<AdvisorSuggestion> &suggestions() const { return m_suggestions; }

Q_SIGNALS:
    void messagesChanged();
    void thinkingChanged();
    void availabilityChanged();
    void proposalChanged();
    void hintChanged();
    void suggestionsChanged();

private:
    QCoro::Task<> findOut();
    QCoro::Task<> respond(QString question);
    QCoro::Task<> take(AdvisorReply reply, QList<Finding> findings);
    QCoro::Task<> offerItems(Finding finding);
    /// The findings that the model may be shown, and that a reply may be about.
    [[nodiscard]] QList<Finding> shownFindings() const;
    [[nodiscard]] QString instructions(const QList<Finding> &findings) const;
    [[nodiscard]] QFuture<QList<StorageItem>> itemsOf(const Finding &finding);
    void append(bool fromUser, const QString &text);
    void setThinking(bool thinking);
    void setProposal(const std::optional<AdvisorProposal> &proposal);
    void setHint(const std::optional<Finding> &hint);
    void setSuggestions(const QList<AdvisorSuggestion> &suggestions);

    AppModel &m_model;
    LanguageModel &m_languageModel;
    QList<AdvisorMessage> m_messages;
    bool m_thinking = false;
    QString m_availability;
    bool m_isAvailable = false;
    /// Of the conversation, and of what was found last.
    QString m_answerer;
    QString m_found;
    std::optional<AdvisorProposal> m_proposal;
    std::optional<Finding> m_hint;
    QList<AdvisorSuggestion> m_suggestions;
    /// Shared with the questions that it has not answered yet.
    std::shared_ptr<ModelSession> m_session;
    /// Of the questions that are awaited.
    std::stop_source m_stop;
    /// One more with all that clears the card: what was to be offered before then no longer is.
    quint64 m_turn = 0;
    /// Counts the times it was to be found out: what an earlier one finds is out of date.
    int m_inquiry = 0;
    QTimer m_again;
    /// Lists items. Not the one that scans run on, which they may fill for long.
    QThreadPool m_pool;
};

} // namespace Quillbrook
