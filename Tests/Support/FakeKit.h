#pragma once

// The Kit's services, all of them made up: at first an empty disk, without volume figures and with nothing in
// the catalogue's places. A test takes real ones for those that it is about.

#include "Platform/KitServices.h"
#include "Removal/HostGuards.h"
#include "Support/FakeBackupProbe.h"
#include "Support/FakeClock.h"
#include "Support/FakeDirectories.h"
#include "Support/FakeFileFacts.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeHostApplications.h"
#include "Support/FakeHostCounters.h"
#include "Support/FakeHostKnowledge.h"
#include "Support/FakeHttpClient.h"
#include "Support/FakeOffload.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeRunningApps.h"
#include "Support/FakeSpaceHolders.h"
#include "Support/FakeTrash.h"
#include "Support/FakeUserDefaults.h"
#include "Support/FakeUtilityQueue.h"
#include "Support/FakeVolumes.h"
#include "Support/MemoryFiles.h"

namespace Quillbrook {

struct FakeKit
{
    /// What takes the place of the made-up ones; all of it outlives whoever gets the services.
    struct Instead
    {
        DirectoryReading *directories = nullptr;
        Processors *processors = nullptr;
        FileFacts *files = nullptr;
        FileReading *reading = nullptr;
        ProcessRunner *processes = nullptr;
        HostKnowledge *host = nullptr;
        Trash *trash = nullptr;
        FileRemoval *removal = nullptr;
        FileWriting *writing = nullptr;
        RelocationDisk *relocation = nullptr;
        Drives *drives = nullptr;
        SpeedProbe *speeds = nullptr;
        HttpClient *http = nullptr;
        UtilityQueue *utility = nullptr;
        HostApplications *applications = nullptr;
        std::string dataFolder = "/home/someone/.local/share";
    };

    FakeKit()
        : kitServices(with({}))
    {
    }
    explicit FakeKit(const Instead &instead)
        : kitServices(with(instead))
    {
    }

    [[nodiscard]] KitServices with(const Instead &instead)
    {
        const auto either = [](auto *real, auto &madeUp) -> auto &
        {
            return real != nullptr ? *real : madeUp;
        };
        return { .directories = either(instead.directories, directories),
            .processors = either(instead.processors, processors),
            .volumes = volumes,
            .defaults = defaults,
            .home = home,
            .counters = counters,
            .files = either(instead.files, files),
            .reading = either(instead.reading, stored),
            .processes = either(instead.processes, processes),
            .runningApps = runningApps,
            .spaceHolders = spaceHolders,
            .clock = clock,
            .host = either(instead.host, host),
            .trash = either(instead.trash, trash),
            .removal = either(instead.removal, trash),
            .writing = either(instead.writing, stored),
            .relocation = either(instead.relocation, relocation),
            .drives = either(instead.drives, drives),
            .speeds = either(instead.speeds, speeds),
            .backups = backups,
            .http = either(instead.http, http),
            .utility = either(instead.utility, queue),
            .guards = guards,
            .applications = either(instead.applications, applications),
            .dataFolder = instead.dataFolder };
    }

    FakeDirectories directories;
    FakeProcessors processors;
    FakeVolumes volumes;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    FakeHostCounters counters;
    FakeFileFacts files;
    FakeProcessRunner processes;
    FakeRunningApps runningApps;
    FakeSpaceHolders spaceHolders;
    FakeClock clock;
    FakeHostKnowledge host;
    FakeTrash trash;
    MemoryFiles stored;
    FakeRelocationDisk relocation;
    FakeDrives drives;
    FakeSpeedProbe speeds;
    FakeBackupProbe backups;
    FakeHttpClient http;
    FakeUtilityQueue queue;
    HostGuards guards;
    FakeHostApplications applications;
    KitServices kitServices;
};

} // namespace Quillbrook
