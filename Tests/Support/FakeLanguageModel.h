#pragma once

// A language model that answers with what the test has put there, at once or when the test says so, and
// remembers what it was told.

#include "Advisor/LanguageModel.h"

#include <QPromise>
#include <QStringList>

#include <deque>
#include <utility>
#include <vector>

namespace Quillbrook {

class FakeLanguageModel final : public LanguageModel
{
public:
    using Reply = std::optional<AdvisorReply>;

    FakeLanguageModel() = default;
    FakeLanguageModel(const FakeLanguageModel &) = delete;
    FakeLanguageModel &operator=(const FakeLanguageModel &) = delete;
    /// Nobody is left without an answer.
    ~FakeLanguageModel() override
    {
        while (!m_open.empty())
            release(std::nullopt);
        while (!m_inquiries.empty())
            tell(present);
    }

    QFuture<ModelAvailability> availability() override
    {
        ++inquiries;
        if (!isSlow)
            return QtFuture::makeReadyFuture(present);
        auto &promise = m_inquiries.emplace_back();
        promise.start();
        return promise.future();
    }
    /// Answers the newest inquiry that is not answered yet.
    void tell(const ModelAvailability &availability)
    {
        auto promise = std::move(m_inquiries.back());
        m_inquiries.pop_back();
        promise.addResult(availability);
        promise.finish();
    }

    std::unique_ptr<ModelSession> startSession(const QString &text) override
    {
        instructions.append(text);
        return std::make_unique<Session>(*this);
    }

    /// Answers the oldest question that is not answered yet.
    void release(const Reply &reply)
    {
        auto promise = std::move(m_open.front());
        m_open.pop_front();
        promise.addResult(reply);
        promise.finish();
    }
    [[nodiscard]] std::size_t open() const { return m_open.size(); }

    ModelAvailability present{ .problem = ModelAvailability::Problem::none,
        .server = QStringLiteral("Ollama"),
        .model = QStringLiteral("small") };
    int inquiries = 0;
    /// Whether a model is there is told by `tell` alone.
    bool isSlow = false;
    /// The next answers, first to last; beyond them a question waits for `release`.
    std::deque<Reply> replies;
    /// Of each session that was started.
    QStringList instructions;
    /// In all sessions.
    QStringList questions;
    /// What each question can be stopped by.
    std::vector<std::stop_token> stops;

private:
    class Session final : public ModelSession
    {
    public:
        explicit Session(FakeLanguageModel &model)
            : m_model(model)
        {
        }

        QFuture<Reply> respond(const QString &question, const std::stop_token &stop) override
        {
            m_model.questions.append(question);
            m_model.stops.push_back(stop);
            if (!m_model.replies.empty()) {
                auto reply = m_model.replies.front();
                m_model.replies.pop_front();
                return QtFuture::makeReadyFuture(reply);
            }
            auto &promise = m_model.m_open.emplace_back();
            promise.start();
            return promise.future();
        }

    private:
        FakeLanguageModel &m_model;
    };

    std::deque<QPromise<Reply>> m_open;
    std::deque<QPromise<ModelAvailability>> m_inquiries;
};

} // namespace Quillbrook
