#pragma once

// The question field under the panes: holds what is being written, and opens the conversation. Main thread
// only; the content state outlives it.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class ContentState;

class AskBarState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// What is being written.
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged FINAL)

public:
    explicit AskBarState(ContentState &content, QObject *parent = nullptr);

    void setDraft(const QString &draft);
    /// Empties the draft and opens the conversation, unless the draft is blank: then nothing happens and the
    /// result is false.
    Q_INVOKABLE bool submit();
    Q_INVOKABLE void openConversation();

    [[nodiscard]] const QString &draft() const { return m_draft; }

Q_SIGNALS:
    void draftChanged();

private:
    ContentState &m_content;
    QString m_draft;
};

} // namespace Quillbrook
