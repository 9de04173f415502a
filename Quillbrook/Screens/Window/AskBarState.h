#pragma once

// The question field under the panes: holds what is being written, asks it and opens the conversation. Main
// thread only; what it is made from outlives it.

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQmlIntegration>

namespace Quillbrook {

class Advisor;
class AppModel;
class ContentState;

class AskBarState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// What is being written.
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged FINAL)
    Q_PROPERTY(bool canAsk READ canAsk NOTIFY draftChanged FINAL)
    /// What stands in the empty field.
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed FINAL)
    /// There is a conversation to go back to.
    Q_PROPERTY(bool hasHistory READ hasHistory NOTIFY changed FINAL)
    /// Questions to try; none once there is a conversation, or while nobody would answer them.
    Q_PROPERTY(QStringList questions READ questions NOTIFY changed FINAL)

public:
    AskBarState(AppModel &model, Advisor &advisor, ContentState &content, QObject *parent = nullptr);

    void setDraft(const QString &draft);
    /// Empties the draft, opens the conversation and asks, unless the draft is blank: then nothing happens
    /// and the result is false.
    Q_INVOKABLE bool submit();
    /// The same with one of the questions to try, counted from 0.
    Q_INVOKABLE void tryQuestion(int index);
    Q_INVOKABLE void openConversation();
    /// To be called when the field gets the keyboard: another program may answer by now.
    Q_INVOKABLE void focusIn();

    [[nodiscard]] const QString &draft() const { return m_draft; }
    [[nodiscard]] bool canAsk() const { return !m_draft.isEmpty(); }
    [[nodiscard]] QString prompt() const;
    [[nodiscard]] bool hasHistory() const;
    [[nodiscard]] QStringList questions() const;

Q_SIGNALS:
    void draftChanged();
    void changed();

private:
    AppModel &m_model;
    Advisor &m_advisor;
    ContentState &m_content;
    QString m_draft;
};

} // namespace Quillbrook
