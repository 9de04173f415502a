#pragma once

// What the screen of the conversation shows and does. What is said stands in the adviser, which lives on
// while another screen is shown; this holds only what is being written. Main thread only; what it is made
// from outlives it.

#include "Screens/Advisor/MessageModel.h"
#include "Screens/Advisor/ProposalState.h"
#include "Screens/PaneState.h"

#include <QString>
#include <QStringList>
#include <QTimer>
#include <QtQmlIntegration>

namespace Quillbrook {

class Advisor;
class AppModel;

class AdvisorState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::MessageModel *messages READ messages CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::ProposalState *proposal READ proposal CONSTANT FINAL)
    /// The line of the banner, and which program and model answers.
    Q_PROPERTY(QString availability READ availability NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(QString answerer READ answerer NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(bool isAvailable READ isAvailable NOTIFY availabilityChanged FINAL)
    Q_PROPERTY(bool thinking READ thinking NOTIFY thinkingChanged FINAL)
    /// Nothing has been said yet.
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY messagesChanged FINAL)
    /// What those who hear the screen are told: all that was answered since they were told last. Empty for a
    /// moment before each, so that the same words count as new.
    Q_PROPERTY(QString announcement READ announcement NOTIFY announcementChanged FINAL)
    Q_PROPERTY(QStringList questions READ questions NOTIFY questionsChanged FINAL)
    /// The words of what can be pressed after the answer.
    Q_PROPERTY(QStringList suggestions READ suggestions NOTIFY suggestionsChanged FINAL)
    /// The line about a related group; empty without one.
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged FINAL)
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged FINAL)
    Q_PROPERTY(bool canAsk READ canAsk NOTIFY canAskChanged FINAL)

public:
    AdvisorState(AppModel &model, Advisor &advisor, QObject *parent = nullptr);

    void setDraft(const QString &draft);
    /// Asks what is written, and empties the field.
    Q_INVOKABLE void submit();
    /// Asks one of the suggested questions, counted from 0.
    Q_INVOKABLE void askSuggested(int index);
    /// Does what a suggestion says, counted from 0.
    Q_INVOKABLE void press(int index);
    /// Asks to clear the related group too.
    Q_INVOKABLE void clearHint();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void clear();
    /// Another program may have been started meanwhile.
    void recheck() override;

    [[nodiscard]] MessageModel *messages() { return &m_messages; }
    [[nodiscard]] ProposalState *proposal() { return &m_proposal; }
    [[nodiscard]] QString availability() const;
    [[nodiscard]] QString answerer() const;
    [[nodiscard]] bool isAvailable() const;
    [[nodiscard]] bool thinking() const;
    [[nodiscard]] bool isEmpty() const;
    [[nodiscard]] const QString &announcement() const { return m_announcement; }
    [[nodiscard]] QStringList questions() const;
    [[nodiscard]] QStringList suggestions() const;
    [[nodiscard]] QString hint() const;
    [[nodiscard]] const QString &draft() const { return m_draft; }
    [[nodiscard]] bool canAsk() const;

Q_SIGNALS:
    void availabilityChanged();
    void thinkingChanged();
    void messagesChanged();
    void announcementChanged();
    void questionsChanged();
    void suggestionsChanged();
    void hintChanged();
    void draftChanged();
    void canAskChanged();

protected:
    void appear() override;
    void disappear() override;

private:
    void awaitMore();
    void announce();
    void setAnnouncement(const QString &announcement);

    AppModel &m_model;
    Advisor &m_advisor;
    MessageModel m_messages;
    ProposalState m_proposal;
    QString m_draft;
    QString m_announcement;
    /// So many messages have been told, or are the person's own.
    qsizetype m_told = 0;
    QTimer m_pause;
};

} // namespace Quillbrook
