#pragma once

// What is sent to a server of language models with each question, to the byte: the instructions as they are,
// the schema of the reply, the earlier turns and the question. Plain values and pure functions, any thread.

#include <QByteArray>
#include <QList>
#include <QString>

namespace Quillbrook {

struct ChatTurn
{
    QString question{};
    /// As the model wrote it, in UTF-8.
    QByteArray reply{};

    bool operator==(const ChatTurn &) const = default;
};

struct ChatRequest
{
    /// By the server's own name.
    QString model{};
    QString instructions{};
    /// Oldest first.
    QList<ChatTurn> turns{};
    QString question{};

    /// More tokens than all of it takes, with room for a reply. Of what a person or a model wrote every byte
    /// may be one; what we write ourselves is in English.
    [[nodiscard]] qint64 tokens() const;
    /// Leaves out the oldest turns until the rest fits into a context of so many tokens, so that no server
    /// cuts off the instructions by itself. False when it does not fit without any turn either.
    [[nodiscard]] bool fitInto(qint64 context);
    /// The context to ask for, where the server has to be told: grows in few steps, since for a new size the
    /// model is loaded anew, and is at most `limit`.
    [[nodiscard]] qint64 contextWithin(qint64 limit) const;

    /// For Ollama's own chat.
    [[nodiscard]] QByteArray ollamaBody(qint64 context) const;
    /// For the chat completions that the other servers offer.
    [[nodiscard]] QByteArray completionsBody() const;
};

} // namespace Quillbrook
