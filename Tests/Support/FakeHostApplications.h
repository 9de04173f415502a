#pragma once

// Applications that a test makes up: none, at first.

#include "Uninstaller/HostApplications.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>

namespace Quillbrook {

class FakeHostApplications final : public HostApplications
{
public:
    [[nodiscard]] HostListing listing() const override
    {
        const std::scoped_lock held(lock);
        ++listings;
        return { .apps = apps };
    }
    [[nodiscard]] qint64 bytes(const InstalledApp &app, const Measure &measure) const override
    {
        return app.isMeasured ? app.app.bytes : measure(app.app.path);
    }
    [[nodiscard]] Plan plan(const HostPlanRequest &request) const override
    {
        const auto found = plans.find(request.app.app.bundleID);
        auto plan = found == plans.end() ? Plan() : found->second;
        if (whilePlanning)
            whilePlanning(request);
        plan.app = request.app.app;
        return plan;
    }
    [[nodiscard]] std::vector<FoundOrphan> orphans(
        const HostListing & /*listing*/, const Measure & /*measure*/, qint64 /*staleDays*/) const override
    {
        const std::scoped_lock held(lock);
        return found;
    }
    [[nodiscard]] std::optional<bool> isRunning(const InstalledApp & /*app*/) const override
    {
        return running;
    }
    [[nodiscard]] qint64 runtimeBytes(const InstalledApp &app, const Measure & /*measure*/) const override
    {
        return app.runtimes.isEmpty() ? 0 : 4096;
    }
    [[nodiscard]] std::optional<QString> obstacle(const InstalledApp & /*app*/) const override
    {
        return obstacleText;
    }
    [[nodiscard]] std::expected<void, QString> takeAway(
        const InstalledApp &app, const std::stop_token & /*stop*/) const override
    {
        const std::scoped_lock held(lock);
        taken.push_back(app.app.bundleID);
        return failure ? std::expected<void, QString>(std::unexpected(*failure))
                       : std::expected<void, QString>();
    }

    std::vector<InstalledApp> apps{};
    /// By identifier; empty plans for others.
    std::map<QString, Plan> plans{};
    /// Called on the thread that plans.
    std::function<void(const HostPlanRequest &request)> whilePlanning{};
    std::vector<FoundOrphan> found{};
    std::optional<bool> running = false;
    std::optional<QString> obstacleText{};
    std::optional<QString> failure{};
    mutable std::vector<QString> taken{};
    /// How often they were asked for.
    mutable std::atomic<int> listings = 0;
    mutable std::mutex lock;
};

} // namespace Quillbrook
