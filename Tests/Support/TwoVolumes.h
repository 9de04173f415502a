#pragma once

// A home folder with a trash, and below it a volume of its own, a disk in memory that this program alone
// sees. The program has entered mounts of its own before.

#include "Offload/OffloadServices.h"
#include "Platform/Linux/Copying/LinuxRelocationDisk.h"
#include "Platform/Linux/Drives/LinuxDrives.h"
#include "Platform/Linux/Drives/LinuxSpeedProbe.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Support/FakeProcessors.h"
#include "Support/PrivateMounts.h"
#include "Support/TrashFixture.h"

#include <functional>

namespace Quillbrook {

/// The trash of a test's home, with something to be done before or after a move, or in its place.
class HookedTrash final : public Trash
{
public:
    explicit HookedTrash(Trash &trash)
        : m_trash(trash)
    {
    }

    using Trash::erase;
    using Trash::move;
    using Trash::restore;
    std::expected<TrashedThing, QString> move(const std::string &path, const TrashOrder &order) override
    {
        if (problem)
            return std::unexpected(*problem);
        if (beforeMove)
            beforeMove(path);
        auto moved = m_trash.move(path, order);
        if (afterMove)
            afterMove(path);
        return moved;
    }
    std::expected<void, QString> restore(
        const std::string &from, const std::string &to, const Provenance *origin) override
    {
        return m_trash.restore(from, to, origin);
    }
    std::expected<void, QString> erase(const std::string &path, const Provenance *origin) override
    {
        return m_trash.erase(path, origin);
    }
    [[nodiscard]] bool isStill(const std::string &path, const Provenance &origin) const override
    {
        return m_trash.isStill(path, origin);
    }
    [[nodiscard]] bool isAway(const std::string &path) const override { return m_trash.isAway(path); }
    void dropLoneNote(const std::string &path, const std::string &note) override
    {
        m_trash.dropLoneNote(path, note);
    }
    void takeBackRight(const std::string &path, const Provenance &origin) override
    {
        m_trash.takeBackRight(path, origin);
    }
    void finishErasing(const std::vector<GoneThing> &things) override { m_trash.finishErasing(things); }
    void flush(const std::vector<std::string> &folders) const override
    {
        flushed.insert(flushed.end(), folders.begin(), folders.end());
        m_trash.flush(folders);
    }
    [[nodiscard]] bool holds(const std::string &path) const override { return m_trash.holds(path); }
    [[nodiscard]] std::vector<TrashEntry> items(const std::string &path) const override
    {
        return m_trash.items(path);
    }

    std::optional<QString> problem{};
    std::function<void(const std::string &path)> beforeMove{};
    std::function<void(const std::string &path)> afterMove{};
    mutable std::vector<std::string> flushed;

private:
    Trash &m_trash;
};

struct TwoVolumes : TrashFixture
{
    explicit TwoVolumes(const std::string &options = "size=8m,mode=755")
        : mounted("none", madeFolder(home), "tmpfs", 0, options)
    {
        if (!mounted.failure().isEmpty() || !PrivateMounts::isMounted(volume()))
            qFatal("the volume is not there");
    }

    [[nodiscard]] std::string volume() const { return home.path("volume"); }
    [[nodiscard]] std::string onVolume(const std::string &name) const { return volume() + '/' + name; }

    [[nodiscard]] OffloadServices services()
    {
        return { .directories = directories,
            .processors = processors,
            .files = facts,
            .drives = drives,
            .speeds = speeds,
            .disk = disk,
            .trash = hookedTrash };
    }

    PrivateMounts::Mounted mounted;
    LinuxDirectoryReading directories;
    FakeProcessors processors;
    LinuxFileFacts facts;
    LinuxDrives drives;
    LinuxSpeedProbe speeds;
    LinuxRelocationDisk disk{ calls };
    HookedTrash hookedTrash{ trash };

private:
    static std::string madeFolder(const TempTree &tree)
    {
        tree.folder("volume");
        return tree.path("volume");
    }
};

} // namespace Quillbrook
