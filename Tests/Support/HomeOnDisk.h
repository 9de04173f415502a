#pragma once

// A real home folder in a temporary folder, and a model over it whose every service but the volume figures,
// the backups and the clock is the machine's own. For tests of what removes things.

#include "Core/AppModel.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Removal/HostGuards.h"
#include "Support/FakeBackupProbe.h"
#include "Support/FakeClock.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeHostKnowledge.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeUserDefaults.h"
#include "Support/FakeVolumes.h"
#include "Support/TempTree.h"

#include <QTest>

#include <filesystem>
#include <memory>
#include <unistd.h>

namespace Quillbrook {

struct HomeOnDisk
{
    /// `data` is where programs keep the user's data, relative to the temporary folder.
    explicit HomeOnDisk(const std::string &data = "data")
        : dataFolder(tree.path(data))
    {
        tree.folder("home");
        home.home = tree.text("home");
        home.realHome = home.home;
        volumes.answer
            = { .available = 1'000'000, .availableForImportantUsage = 1'000'000, .total = 4'000'000 };
        start();
    }

    /// A new model over the same disk, as after a start.
    void start() { model = std::make_unique<AppModel>(services()); }

    void scan() const
    {
        model->scan({ .scope = Scope::complete });
        settled();
    }
    /// Waits for the end of the scan in hand.
    void settled() const { QTRY_COMPARE(model->phase().kind, Phase::Kind::ready); }

    [[nodiscard]] std::string path(const std::string &name) const { return tree.path("home/" + name); }
    [[nodiscard]] bool has(const std::string &name) const
    {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::symlink_status(path(name), error));
    }
    /// Where things lie in the Trash, and whether one of that name does.
    [[nodiscard]] std::string trashed(const std::string &name) const
    {
        return trashFolder + "/files/" + name;
    }
    [[nodiscard]] bool isTrashed(const std::string &name) const
    {
        std::error_code error;
        return std::filesystem::exists(std::filesystem::symlink_status(trashed(name), error));
    }
    /// The finding of the present report at that place. REQUIRES: it is there.
    [[nodiscard]] Finding finding(const std::string &name) const
    {
        for (const auto &found : model->report()->findings)
            if (found.path.toStdString() == path(name))
                return found;
        qFatal("no finding at %s", name.c_str());
    }
    [[nodiscard]] std::optional<NodeSnapshot> node(const std::string &name) const
    {
        return model->tree()->snapshot(
            model->tree()->find(QString::fromStdString(path(name)), model->rootNode()));
    }

    TempTree tree;
    const std::string dataFolder;
    const std::string trashFolder = dataFolder + "/Trash";
    LinuxDirectoryReading directories;
    FakeProcessors processors;
    FakeVolumes volumes;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    LinuxFileFacts files;
    LinuxFileReading reading;
    FakeProcessRunner processes;
    FakeClock clock;
    FakeHostKnowledge host;
    LinuxSpaceReserve reserve{ dataFolder + "/Quillbrook/reserve" };
    LinuxTrash trash{ { .homeTrash = trashFolder, .user = ::getuid() }, reserve, clock };
    LinuxFileRemoval removal;
    LinuxFileWriting writing{ &reserve };
    FakeBackupProbe backups;
    HostGuards guards;
    FakeDesktop desktop;
    std::unique_ptr<AppModel> model;

private:
    [[nodiscard]] AppServices services()
    {
        return { .kit = { .directories = directories,
                     .processors = processors,
                     .volumes = volumes,
                     .defaults = defaults,
                     .home = home,
                     .files = files,
                     .reading = reading,
                     .processes = processes,
                     .clock = clock,
                     .host = host,
                     .trash = trash,
                     .removal = removal,
                     .writing = writing,
                     .backups = backups,
                     .http = desktop.http,
                     .utility = desktop.utility,
                     .guards = guards,
                     .dataFolder = dataFolder },
            .revealer = desktop.revealer,
            .notifier = desktop.notifier,
            .loginItem = desktop.loginItem,
            .links = desktop.links,
            .folderPicker = desktop.folderPicker,
            .folderGrants = desktop.folderGrants };
    }
};

} // namespace Quillbrook
