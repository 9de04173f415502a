#pragma once

// One thing that is moved to another drive or brought back, or waits for its turn. Shared by the main thread
// and the one that moves it.

#include <QElapsedTimer>
#include <QString>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>

namespace Quillbrook {

struct OffloadJob
{
    /// How far it has come, as that matters to whoever gives it up.
    enum class Step : std::uint8_t {
        /// Nothing but its copy has been touched.
        copying,
        /// It works on this disk.
        finishing,
        /// The rest is the drive's alone.
        clearingDrive,
        givenUp,
    };

    OffloadJob(QString ownId, QString ownTitle, std::string ownDrive, qint64 bytes)
        : id(std::move(ownId))
        , title(std::move(ownTitle))
        , drive(std::move(ownDrive))
    {
        tell(0, bytes);
    }

    /// Whether it was at that step, which only one thread can leave.
    [[nodiscard]] bool goesFrom(Step step, Step next) { return m_step.compare_exchange_strong(step, next); }

    void tell(qint64 bytes, qint64 of)
    {
        total = std::max<qint64>(of, 1);
        done = std::min<qint64>(bytes, total);
    }

    const QString id;
    const QString title;
    /// The folder there that it goes to, or comes from.
    const std::string drive;
    // Shared with the thread that moves it.
    std::stop_source stop{};
    std::atomic<qint64> done{ 0 };
    std::atomic<qint64> total{ 1 };
    // The main thread's.
    bool hasBegun = false;
    QElapsedTimer since{};
    QElapsedTimer sinceStop{};
    std::function<void()> endWithoutDrive{};

private:
    std::atomic<Step> m_step = Step::copying;
};

} // namespace Quillbrook
