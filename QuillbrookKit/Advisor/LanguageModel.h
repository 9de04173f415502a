#pragma once

// A language model on this machine. It is asked for one thing: to fill in the four fields of a reply. It has
// no tools, and it learns nothing but the instructions and the questions.

#include "Advisor/AdvisorReply.h"

#include <QFuture>

#include <memory>
#include <optional>
#include <stop_token>

namespace Quillbrook {

/// Whether a model can be asked, and which one answers or why none does.
struct ModelAvailability
{
    /// Why none can be asked, the most telling last.
    enum class Problem {
        none,
        /// Nothing that offers models runs here.
        noServer,
        /// What would offer one is another person's.
        someoneElses,
        tooOld,
        noModel,
        /// The models that it offers run on another machine.
        onlyElsewhere,
        /// It has not finished loading its model.
        loading,
    };

    Problem problem = Problem::noServer;
    /// What the program that answers is called, and its model; for people to read. Empty where they are not
    /// known.
    QString server{};
    QString model{};

    bool operator==(const ModelAvailability &) const = default;

    [[nodiscard]] bool isAvailable() const { return problem == Problem::none; }
};

/// One conversation, with a transcript of its turns. Main thread only.
class ModelSession
{
public:
    ModelSession() = default;
    ModelSession(const ModelSession &) = delete;
    ModelSession &operator=(const ModelSession &) = delete;
    virtual ~ModelSession() = default;

    /// Sends a question and nothing else. Absent for every failure, a second question while one is awaited
    /// and a requested stop among them; what failed is no part of the transcript.
    [[nodiscard]] virtual QFuture<std::optional<AdvisorReply>> respond(
        const QString &question, const std::stop_token &stop)
        = 0;
};

class LanguageModel
{
public:
    virtual ~LanguageModel() = default;

    // Main thread only, which also answers.

    /// Finds out anew. Sends nothing that belongs to a conversation.
    [[nodiscard]] virtual QFuture<ModelAvailability> availability() = 0;
    /// A conversation with the model that was found last; without one, each of its questions fails. What made
    /// it outlives it.
    [[nodiscard]] virtual std::unique_ptr<ModelSession> startSession(const QString &instructions) = 0;
};

} // namespace Quillbrook
