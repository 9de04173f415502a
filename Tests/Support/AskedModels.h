#pragma once

// What the suites share that ask a made-up server of models: whose listener it is, its script, and the wait
// for what it says.

#include "Platform/LocalModelServers.h"
#include "Platform/LoopbackListeners.h"
#include "Support/ModelServer.h"

#include <QTest>

#include <atomic>

namespace Quillbrook {

class FakeListeners final : public LoopbackListeners
{
public:
    [[nodiscard]] Listener at(quint16 /*port*/) const override { return answer; }

    std::atomic<Listener> answer = Listener::trusted;
};

/// Milliseconds; far beyond what a busy machine takes.
inline constexpr int modelPatience = 20'000;

/// JSON, with single quotes in the place of double ones.
inline QJsonObject modelScript(const QByteArray &text)
{
    const auto object = QJsonDocument::fromJson(QByteArray(text).replace('\'', '"')).object();
    if (object.isEmpty())
        qFatal("no script: %s", text.constData());
    return object;
}

/// As a model writes it.
inline QByteArray modelReply()
{
    return QByteArrayLiteral(
        "{`answer`: `Five.`, `proposesRemoval`: true, `groupID`: `a.b`, `alsoConsiderGroupID`: ``}")
        .replace('`', '"');
}

/// Of an Ollama whose model always gives that reply; `more` goes on with the script.
inline QJsonObject modelReplying(const QByteArray &more = {})
{
    auto made = modelScript("{'kind':'ollama'" + more + "}");
    if (!made.contains(QLatin1String("replies")))
        made[QLatin1String("replies")] = QJsonArray{ QString::fromUtf8(modelReply()) };
    return made;
}

inline ModelAvailability availabilityOf(LocalModelServers &servers)
{
    const auto found = servers.availability();
    return QTest::qWaitFor([&found] { return found.isFinished(); }, modelPatience) ? found.result()
                                                                                   : ModelAvailability();
}

inline std::optional<AdvisorReply> answerOf(ModelSession &session, const QString &question)
{
    const auto reply = session.respond(question, {});
    return QTest::qWaitFor([&reply] { return reply.isFinished(); }, modelPatience)
        ? reply.result()
        : AdvisorReply{ .answer = QStringLiteral("too late") };
}

} // namespace Quillbrook
