#pragma once

// The Kit's services, made up but for the folders and what is known of files, which a test brings along or
// takes from the real disk.

#include "Platform/KitServices.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Removal/HostGuards.h"
#include "Support/FakeBackupProbe.h"
#include "Support/FakeClock.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeHostKnowledge.h"
#include "Support/FakeHttpClient.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeTrash.h"
#include "Support/FakeUserDefaults.h"
#include "Support/FakeUtilityQueue.h"
#include "Support/FakeVolumes.h"
#include "Support/MemoryFiles.h"

namespace Quillbrook {

struct FakeKit
{
    /// `realQueue` takes the place of the made-up one, and outlives this.
    FakeKit(DirectoryReading &directories, const QString &homeFolder, UtilityQueue *realQueue = nullptr)
        : services{ .directories = directories,
            .processors = processors,
            .volumes = volumes,
            .defaults = defaults,
            .home = home,
            .files = files,
            .reading = stored,
            .processes = processes,
            .clock = clock,
            .host = host,
            .trash = trash,
            .removal = trash,
            .writing = stored,
            .backups = backups,
            .http = http,
            .utility = realQueue != nullptr ? *realQueue : queue,
            .guards = guards,
            .dataFolder = {} }
    {
        home.home = homeFolder;
        home.realHome = homeFolder;
    }

    FakeProcessors processors;
    FakeVolumes volumes;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    LinuxFileFacts files;
    FakeProcessRunner processes;
    FakeClock clock;
    FakeHostKnowledge host;
    FakeTrash trash;
    MemoryFiles stored;
    FakeBackupProbe backups;
    FakeHttpClient http;
    FakeUtilityQueue queue;
    HostGuards guards;
    KitServices services;
};

} // namespace Quillbrook
