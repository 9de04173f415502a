#pragma once

// What servers of language models say of themselves and of their models, and the reply that an answer holds.
// Nothing of it is trusted: what lacks a field, or has it of another type, says nothing. Pure functions, any
// thread.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVersionNumber>

#include <optional>

namespace Quillbrook::ModelAnswers {

/// A model that a server lists.
struct Listed
{
    QString id{};
    /// What the server says whose it is, which tells the kinds of servers apart. Empty from Ollama.
    QString owner{};
    /// It runs on another machine.
    bool isElsewhere = false;
    /// Tokens; absent where the list does not tell.
    std::optional<qint64> context{};

    bool operator==(const Listed &) const = default;
};

/// What Ollama tells of one model.
struct Details
{
    bool isElsewhere = false;
    /// It writes text, and is not only there to compare some.
    bool canAnswer = true;
    std::optional<qint64> context{};

    bool operator==(const Details &) const = default;
};

[[nodiscard]] std::optional<QVersionNumber> ollamaVersion(const QByteArray &body);
[[nodiscard]] std::optional<QList<Listed>> ollamaModels(const QByteArray &body);
[[nodiscard]] std::optional<Details> ollamaDetails(const QByteArray &body);
/// The text that the model wrote; absent unless it is whole and was written here.
[[nodiscard]] std::optional<QByteArray> ollamaReply(const QByteArray &body);

[[nodiscard]] bool isHealthy(const QByteArray &body);
/// A server of llama.cpp's says that its model is not there yet.
[[nodiscard]] bool isLoading(const QByteArray &body);
[[nodiscard]] std::optional<QList<Listed>> models(const QByteArray &body);
/// Tokens that one conversation has room for, by the properties of a server of llama.cpp's.
[[nodiscard]] std::optional<qint64> llamaContext(const QByteArray &body);
[[nodiscard]] std::optional<QByteArray> completionsReply(const QByteArray &body);

/// A model's id in a form for people to read: without the folders and the ending of a file, on one line.
[[nodiscard]] QString shownName(const QString &id);

} // namespace Quillbrook::ModelAnswers
