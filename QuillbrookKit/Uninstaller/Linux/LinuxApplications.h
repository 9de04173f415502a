#pragma once

// The applications of a Linux desktop: Flatpaks, snaps, AppImages, what the package manager owns, and what a
// user's own entries start.

#include "Uninstaller/HostApplications.h"
#include "Uninstaller/Linux/ApplicationPlaces.h"
#include "Uninstaller/UninstallerServices.h"

#include <functional>

namespace Quillbrook {

class LinuxApplications final : public HostApplications
{
public:
    struct Options
    {
        UninstallerServices services;
        const ProcessRunner &processes;
        ApplicationPlaces places{};
        /// Inside one, the programs outside of it can't be seen.
        bool isSandboxed = false;
        /// Where the kernel tells of processes.
        std::string processFolder = "/proc";
    };

    explicit LinuxApplications(Options options);

    [[nodiscard]] HostListing listing() const override;
    [[nodiscard]] qint64 bytes(const InstalledApp &app, const Measure &measure) const override;
    [[nodiscard]] Plan plan(const HostPlanRequest &request) const override;
    [[nodiscard]] std::vector<FoundOrphan> orphans(
        const HostListing &listing, const Measure &measure, qint64 staleDays) const override;
    [[nodiscard]] std::optional<bool> isRunning(const InstalledApp &app) const override;
    [[nodiscard]] qint64 runtimeBytes(const InstalledApp &app, const Measure &measure) const override;
    [[nodiscard]] std::optional<QString> obstacle(const InstalledApp &app) const override;
    [[nodiscard]] std::expected<void, QString> takeAway(
        const InstalledApp &app, const std::stop_token &stop) const override;

    /// Why one of these must stay, beside what holds for all, in which "{name}" stands for its name; for
    /// those who translate.
    [[nodiscard]] static QStringList blockedSentences();

private:
    [[nodiscard]] std::optional<QString> refusal(
        const InstalledApp &app, const UninstallerServices &services) const;

    Options m_options;
};

} // namespace Quillbrook
