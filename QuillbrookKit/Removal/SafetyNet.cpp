#include "Removal/SafetyNet.h"

#include "Platform/BackupProbe.h"
#include "Platform/ProcessRunner.h"

#include <algorithm>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr auto toolTimeLimit = std::chrono::seconds(10);

// What the tool prints, however it ends; absent where there is none to start.
std::optional<QByteArray> ask(const ProcessRunner &processes, const QStringList &arguments)
{
    const auto result = processes.run(
        { .program = u"/usr/bin/tmutil"_s, .arguments = arguments, .timeLimit = toolTimeLimit });
    return result ? std::optional(result->output) : std::nullopt;
}

int countSnapshots(const QByteArray &listing)
{
    const auto lines = listing.split('\n');
    return static_cast<int>(std::ranges::count_if(
        lines, [](const QByteArray &line) { return line.contains("com.apple.TimeMachine"); }));
}

} // namespace

SafetyNet SafetyNet::current(const ProcessRunner &processes, const BackupProbe &probe)
{
    const auto destinations = ask(processes, { u"destinationinfo"_s });
    const auto snapshots = ask(processes, { u"listlocalsnapshots"_s, u"/"_s });
    if (!destinations && !snapshots) {
        const auto backups = probe.find();
        return { .hasTimeMachineDestination = backups.hasDestination,
            .localSnapshotCount = backups.localSnapshots };
    }
    return { .hasTimeMachineDestination = destinations.value_or(QByteArray()).contains("Name"),
        .localSnapshotCount = countSnapshots(snapshots.value_or(QByteArray())) };
}

} // namespace Quillbrook
