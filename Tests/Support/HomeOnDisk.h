#pragma once

// A real home folder in a temporary folder, and a model that reads and changes it by the machine's own
// services; all others are made up. For tests of what removes things.

#include "Core/AppModel.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKit.h"
#include "Support/TempTree.h"

#include <QSemaphore>
#include <QTest>

#include <filesystem>
#include <memory>
#include <unistd.h>

namespace Quillbrook {

struct HomeOnDisk : FakeKit
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
    void start()
    {
        model.reset();
        model = std::make_unique<AppModel>(services());
        QObject::connect(
            &model->scans(), &ScanDriver::started, model.get(), [count = scanCount] { ++*count; });
        known();
    }

    void scan() const
    {
        model->scans().scan({ .scope = Scope::complete });
        settled();
    }
    /// Waits for the end of what is being removed, and of the scan that runs.
    void settled() const
    {
        QTRY_VERIFY(!model->removals().isBusy() && model->scans().phase().kind == Phase::Kind::ready);
        known();
    }
    /// Waits for the end of what is being removed.
    void removed() const
    {
        QTRY_VERIFY(!model->removals().isBusy());
        known();
    }
    /// Waits until the model knows what lies in the Trash.
    void known() const
    {
        // Not by waiting for the future, which would be answered here and before those that wait.
        QSemaphore answered;
        static_cast<void>(model->removals().ask([&answered] { answered.release(); }));
        answered.acquire();
        QCoreApplication::processEvents();
    }
    /// How many scans have begun.
    [[nodiscard]] int scans() const { return *scanCount; }
    /// Removes what is selected, as it is now.
    void removeSelected(bool permanent) const
    {
        const auto &selected = model->navigation().selection();
        auto &paths = model->pathRemovals();
        paths.removeSelected(permanent, selected ? paths.inodeOf(*selected)() : 0);
        removed();
    }

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
        for (const auto &found : model->scans().report()->findings)
            if (found.path.toStdString() == path(name))
                return found;
        qFatal("no finding at %s", name.c_str());
    }
    [[nodiscard]] std::optional<NodeSnapshot> node(const std::string &name) const
    {
        return model->scans().tree()->snapshot(
            model->scans().tree()->find(QString::fromStdString(path(name)), model->scans().rootNode()));
    }

    TempTree tree;
    const std::string dataFolder;
    const std::string trashFolder = dataFolder + "/Trash";
    LinuxDisk disk{ dataFolder + "/Quillbrook", { .homeTrash = trashFolder, .user = ::getuid() }, clock };
    FakeDesktop desktop;
    std::unique_ptr<AppModel> model;
    const std::shared_ptr<int> scanCount = std::make_shared<int>(0);

private:
    [[nodiscard]] AppServices services()
    {
        return desktop.services(with({ .directories = &disk.directories,
            .files = &disk.files,
            .reading = &disk.reading,
            .trash = &disk.trash,
            .removal = &disk.removal,
            .writing = &disk.writing,
            .relocation = &disk.relocation,
            .drives = &disk.drives,
            .speeds = &disk.speeds,
            .http = &desktop.http,
            .utility = &desktop.utility,
            .dataFolder = dataFolder }));
    }
};

} // namespace Quillbrook
