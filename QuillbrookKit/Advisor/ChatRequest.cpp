#include "Advisor/ChatRequest.h"

#include "Advisor/AdvisorReply.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Quillbrook {

namespace {

/// Of a reply, which is a sentence and two ids.
constexpr qint64 tokensOfReply = 512;
/// What a server adds around a message.
constexpr qint64 tokensAroundMessage = 8;
/// Models read English words in pieces of four letters and more; everything else may be a piece of its own.
constexpr qint64 lettersOfToken = 3;
constexpr qsizetype mostTurns = 24;
constexpr qint64 smallestContext = 8192;

// Servers do not show a model the descriptions in the schema, so it reads them here.
QByteArray schemaMessage()
{
    return "Answer with one JSON object that fits this schema, and with nothing else:\n"
        + AdvisorReply::schema();
}

/// Of what we write.
qint64 tokensOf(QByteArrayView text)
{
    const auto isLetter = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == ' ';
    };
    const auto letters = std::ranges::count_if(text, isLetter);
    return tokensAroundMessage + letters / lettersOfToken + 1 + (text.size() - letters);
}

/// Of what others write, be it no language at all.
qint64 mostTokensOf(QByteArrayView text)
{
    return tokensAroundMessage + text.size();
}

qint64 mostTokensOf(const ChatTurn &turn)
{
    return mostTokensOf(turn.question.toUtf8()) + mostTokensOf(turn.reply);
}

QByteArray quoted(const QByteArray &text)
{
    return QByteArray::fromStdString(nlohmann::json(text.toStdString()).dump());
}

QByteArray message(const char *role, const QByteArray &content)
{
    return R"({"role":")" + QByteArray(role) + R"(","content":)" + quoted(content) + '}';
}

// The instructions come first: what a server leaves out for lack of room, it takes from what follows them.
QByteArray beginning(const ChatRequest &request)
{
    QByteArrayList messages{ message("system", request.instructions.toUtf8()),
        message("system", schemaMessage()) };
    for (const auto &turn : request.turns)
        messages << message("user", turn.question.toUtf8()) << message("assistant", turn.reply);
    messages << message("user", request.question.toUtf8());
    return R"({"model":)" + quoted(request.model.toUtf8()) + R"(,"stream":false,"messages":[)"
        + messages.join(',') + ']';
}

} // namespace

qint64 ChatRequest::tokens() const
{
    auto sum = tokensOf(instructions.toUtf8()) + tokensOf(schemaMessage()) + mostTokensOf(question.toUtf8())
        + tokensOfReply;
    for (const auto &turn : turns)
        sum += mostTokensOf(turn);
    return sum;
}

bool ChatRequest::fitInto(qint64 context)
{
    turns = turns.last(std::min(turns.size(), mostTurns));
    auto needed = tokens();
    while (!turns.isEmpty() && needed > context)
        needed -= mostTokensOf(turns.takeFirst());
    return needed <= context;
}

qint64 ChatRequest::contextWithin(qint64 limit) const
{
    const auto needed = tokens();
    auto context = smallestContext;
    while (context < needed && context < limit)
        context *= 2;
    return std::min(context, limit);
}

QByteArray ChatRequest::ollamaBody(qint64 context) const
{
    return beginning(*this) + R"(,"format":)" + AdvisorReply::schema() + R"(,"options":{"num_ctx":)"
        + QByteArray::number(context) + "}}";
}

QByteArray ChatRequest::completionsBody() const
{
    return beginning(*this)
        + R"(,"response_format":{"type":"json_schema","json_schema":{"name":"advisor_reply","strict":true,"schema":)"
        + AdvisorReply::schema() + "}}}";
}

} // namespace Quillbrook
