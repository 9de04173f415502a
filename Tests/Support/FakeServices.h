#pragma once

// A whole made-up machine for tests of the application's models, at first with an empty disk, without volume
// figures and with nothing in the catalogue's places.

#include "Platform/AppServices.h"
#include "Removal/HostGuards.h"
#include "Support/FakeBackupProbe.h"
#include "Support/FakeClock.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeDirectories.h"
#include "Support/FakeFileFacts.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeHostKnowledge.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeTrash.h"
#include "Support/FakeUserDefaults.h"
#include "Support/FakeVolumes.h"
#include "Support/MemoryFiles.h"

namespace Quillbrook {

struct FakeServices
{
    FakeDirectories directories;
    FakeProcessors processors;
    FakeVolumes volumes;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    FakeFileFacts files;
    FakeProcessRunner processes;
    FakeClock clock;
    FakeHostKnowledge host;
    FakeTrash trash;
    MemoryFiles stored;
    FakeBackupProbe backups;
    HostGuards guards;
    FakeDesktop desktop;

    AppServices services{
        .kit = { .directories = directories,
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
            .http = desktop.http,
            .utility = desktop.utility,
            .guards = guards,
            .dataFolder = "/home/someone/.local/share" },
        .revealer = desktop.revealer,
        .notifier = desktop.notifier,
        .loginItem = desktop.loginItem,
        .links = desktop.links,
        .folderPicker = desktop.folderPicker,
        .folderGrants = desktop.folderGrants,
        .version = QStringLiteral("1.0"),
        .updateFeed = QUrl(QStringLiteral("https://updates.test/version.json")),
    };
};

} // namespace Quillbrook
