#pragma once

// A login item in memory; with `failure` set it stays as it is.

#include "Platform/LoginItem.h"

#include <QPromise>

#include <optional>
#include <utility>
#include <vector>

namespace Quillbrook {

class FakeLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override { return enabled; }
    QFuture<std::expected<void, QString>> setEnabled(bool wanted) override
    {
        asked.append(wanted);
        QPromise<std::expected<void, QString>> promise;
        promise.start();
        auto future = promise.future();
        m_open.push_back(std::move(promise));
        if (!isSlow)
            release();
        return future;
    }

    /// Answers what was asked, as the last question wanted it.
    void release()
    {
        for (auto promises = std::exchange(m_open, {}); auto &promise : promises) {
            if (!failure)
                enabled = asked.last();
            promise.addResult(failure ? std::unexpected(*failure) : std::expected<void, QString>());
            promise.finish();
        }
    }

    bool enabled = false;
    std::optional<QString> failure;
    QList<bool> asked;
    /// Answers wait for `release`.
    bool isSlow = false;

private:
    std::vector<QPromise<std::expected<void, QString>>> m_open;
};

} // namespace Quillbrook
