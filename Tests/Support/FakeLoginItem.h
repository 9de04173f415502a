#pragma once

// A login item in memory; with `failure` set it stays as it is.

#include "Platform/LoginItem.h"

#include <QPromise>

#include <optional>

namespace Quillbrook {

class FakeLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override { return enabled; }
    QFuture<std::expected<void, QString>> setEnabled(bool wanted) override
    {
        asked.append(wanted);
        std::expected<void, QString> outcome;
        if (failure)
            outcome = std::unexpected(*failure);
        else
            enabled = wanted;
        QPromise<std::expected<void, QString>> promise;
        promise.start();
        promise.addResult(outcome);
        promise.finish();
        return promise.future();
    }

    bool enabled = false;
    std::optional<QString> failure;
    QList<bool> asked;
};

} // namespace Quillbrook
