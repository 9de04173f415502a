#pragma once

// Whether there is a newer version of the program. Main thread only; the services outlive it.

#include "Automation/UpdateCheck.h"

#include <QCoroTask>
#include <QObject>

#include <optional>

namespace Quillbrook {

struct AppServices;

class UpdateDriver : public QObject
{
    Q_OBJECT

public:
    explicit UpdateDriver(const AppServices &services, QObject *parent = nullptr);

    /// Asks, at most once a day unless `update` is present, whether there is a newer version.
    void checkForUpdate();

    /// What there is newer than this; absent when nothing is known of such.
    [[nodiscard]] const std::optional<AvailableUpdate> &update() const { return m_update; }

Q_SIGNALS:
    void updateChanged();

private:
    QCoro::Task<> ask();

    const AppServices &m_services;
    std::optional<AvailableUpdate> m_update;
};

} // namespace Quillbrook
