#pragma once

// A desktop's notifications that only remembers.

#include "Platform/Notifier.h"

#include <QList>
#include <QPromise>

#include <utility>

namespace Quillbrook {

class FakeNotifier final : public Notifier
{
public:
    void post(const QString &title, const QString &body) override { posted.append({ title, body }); }
    QFuture<void> requestAuthorisation() override
    {
        ++requests;
        current = afterRequest;
        QPromise<void> promise;
        promise.start();
        promise.finish();
        return promise.future();
    }
    QFuture<NotificationState> state() override
    {
        ++questions;
        QPromise<NotificationState> promise;
        promise.start();
        promise.addResult(current);
        promise.finish();
        return promise.future();
    }
    bool hasSettings() const override { return settingsPage; }
    void openSettings() override { ++settingsOpened; }

    NotificationState current = NotificationState::notAsked;
    NotificationState afterRequest = NotificationState::allowed;
    bool settingsPage = true;
    QList<std::pair<QString, QString>> posted;
    int requests = 0;
    int questions = 0;
    int settingsOpened = 0;
};

} // namespace Quillbrook
