// The trashes of other volumes, and what is mounted, with mounts that this program alone sees. Where it may
// not have mounts of its own, its tests are skipped with the reason.

#include "Platform/Linux/Files/LinuxSpaceReserve.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

QString whyNotPermitted;

// A home folder and, in it, a volume of its own.
struct VolumeFixture : TrashFixture
{
    VolumeFixture() { home.folder("volume"); }

    [[nodiscard]] std::string on(const std::string &name) const { return home.path("volume/" + name); }
    [[nodiscard]] std::string own() const { return ".Trash-" + std::to_string(places.user); }
    [[nodiscard]] std::string shared() const { return ".Trash/" + std::to_string(places.user); }
};

void fill(const std::string &name)
{
    const FileDescriptor file(::open(name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    const std::string block(4096, 'q');
    while (::write(file.number(), block.data(), block.size()) > 0) { }
}

} // namespace

class TestLinuxTrashVolumes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void ownTrashIsMadeAtTheTop()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.fileWith("volume/folder/a b", "a");
        const auto moved = f.trash.move(f.on("folder/a b"));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error()));
        QCOMPARE(*moved, f.on(f.own() + "/files/a b"));
        QCOMPARE(f.content(*moved), std::string("a"));
        QCOMPARE(f.content(f.on(f.own() + "/info/a b.trashinfo")),
            std::string("[Trash Info]\nPath=folder/a%20b\nDeletionDate=2024-06-15T12:00:00\n"));
        QVERIFY(!f.isThere(f.home.path(".local")));
    }

    void flushReachesEachVolumeOnce()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.folder("folder");
        f.home.folder("volume/drawer");
        f.trash.flush({ f.home.path("folder"), f.on("gone"), f.on("drawer"), f.home.path("volume"),
            f.home.path("folder/") });
        QCOMPARE(f.calls.flushed, (std::vector<std::string>{ "folder", "drawer" }));
    }

    void sharedTrashComesFirst()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.folder("volume/.Trash");
        f.home.permissions("volume/.Trash", 01777);
        f.home.file("volume/a");
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.on(f.shared() + "/files/a"));
        QVERIFY(!f.isThere(f.on(f.own())));
        QVERIFY(f.trash.holds(*moved));
    }

    void unsafeSharedTrashIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("kind");
        for (const auto *kind :
            { "not sticky", "a link", "a file", "a link in it", "another's folder in it" })
            QTest::newRow(kind) << QByteArray(kind);
    }

    void unsafeSharedTrashIsNotUsed()
    {
        QFETCH(QByteArray, kind);
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.folder("volume/elsewhere");
        f.home.permissions("volume/elsewhere", 01777);
        const std::map<QByteArray, std::function<void()>> make{
            { "not sticky", [&] { f.home.folder("volume/.Trash"); } },
            { "a link", [&] { f.home.link("volume/.Trash", "elsewhere"); } },
            { "a file", [&] { f.home.file("volume/.Trash"); } },
            { "a link in it", [&] { f.home.link("volume/" + f.shared(), "../elsewhere"); } },
            { "another's folder in it",
                [&] {
                    f.home.folder("volume/" + f.shared());
                    if (::chown(f.on(f.shared()).c_str(), 12345, 12345) != 0)
                        QSKIP("no other owners here");
                } },
        };
        make.at(kind)();
        ::chmod(f.on(".Trash").c_str(), kind == "not sticky" ? 0777 : 01777);
        f.home.file("volume/a");
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.on(f.own() + "/files/a"));
        QVERIFY(f.names(f.on("elsewhere")).empty());
    }

    void unsafeOwnTrashIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("kind");
        for (const auto *kind :
            { "a link", "a file", "a link for its files", "a link for its notes", "another's" })
            QTest::newRow(kind) << QByteArray(kind);
    }

    void unsafeOwnTrashIsNotUsed()
    {
        QFETCH(QByteArray, kind);
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.folder("volume/elsewhere");
        const auto own = "volume/" + f.own();
        const std::map<QByteArray, std::function<void()>> make{
            { "a link", [&] { f.home.link(own, "elsewhere"); } },
            { "a file", [&] { f.home.file(own); } },
            { "a link for its files", [&] { f.home.link(own + "/files", "../elsewhere"); } },
            { "a link for its notes", [&] { f.home.link(own + "/info", "../elsewhere"); } },
            { "another's",
                [&] {
                    f.home.folder(own);
                    if (::chown(f.home.path(own).c_str(), 12345, 12345) != 0)
                        QSKIP("no other owners here");
                } },
        };
        make.at(kind)();
        f.home.fileWith("volume/a", "kept");
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(!moved);
        QCOMPARE(moved.error(), u"There is no Trash for it."_s);
        QCOMPARE(f.content(f.on("a")), std::string("kept"));
        QVERIFY(f.names(f.on("elsewhere")).empty());
    }

    void volumeThatCannotBeWrittenToHasNone()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.fileWith("volume/a", "kept");
        QCOMPARE(::mount("none", f.home.path("volume").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(!moved);
        QCOMPARE(moved.error(), u"There is no Trash for it."_s);
        LinuxFileRemoval removal;
        QCOMPARE(removal.remove(f.on("a")).error(), u"The disk can only be read."_s);
        QCOMPARE(f.content(f.on("a")), std::string("kept"));
    }

    // A rename does not cross into it though it is the same file system.
    void bindMountIsAVolumeOfItsOwn()
    {
        VolumeFixture f;
        f.home.fileWith("elsewhere/a", "a");
        const Mounted mounted(f.home.path("elsewhere"), f.home.path("volume"), "", MS_BIND);
        QCOMPARE(mounted.failure(), QString());
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.on(f.own() + "/files/a"));
    }

    void homeTrashOnAnotherVolumeIsNotUsed()
    {
        VolumeFixture f;
        f.home.folder("top/home");
        f.home.folder("data");
        const Mounted top("none", f.home.path("top"), "tmpfs");
        const Mounted data("none", f.home.path("data"), "tmpfs");
        QCOMPARE(top.failure() + data.failure(), QString());
        f.home.file("top/home/a");
        const TrashPlaces places{ .homeTrash = f.home.path("data/Trash"), .user = f.places.user };
        LinuxTrash trash(places, f.reserve, f.clock);
        const auto moved = trash.move(f.home.path("top/home/a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.home.path("top/" + f.own() + "/files/a"));
        QVERIFY(f.names(f.home.path("data")).empty());
    }

    void filesOnAnotherVolumeThanTheTrash()
    {
        VolumeFixture f;
        f.home.folder("top/home/.local/share/Trash/files");
        const Mounted top("none", f.home.path("top"), "tmpfs");
        QCOMPARE(top.failure(), QString());
        f.home.folder("top/Trash/files");
        f.home.fileWith("top/a", "kept");
        const Mounted files("none", f.home.path("top/Trash/files"), "tmpfs");
        QCOMPARE(files.failure(), QString());
        const TrashPlaces places{ .homeTrash = f.home.path("top/Trash"), .user = f.places.user };
        LinuxTrash trash(places, f.reserve, f.clock);
        const auto moved = trash.move(f.home.path("top/a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.home.path("top/" + f.own() + "/files/a"));
        QVERIFY(f.names(f.home.path("top/Trash/info")).empty());
    }

    // What lies in such a trash is not what was moved there.
    void trashWithAMountInItIsNone()
    {
        TrashFixture f;
        f.home.file("a");
        const auto moved = f.trash.move(f.home.path("a"), {});
        QVERIFY(moved);
        const Provenance from{
            .originalPath = f.home.path("a"), .movedAt = f.clock.moment, .identity = moved->identity
        };
        QVERIFY(f.trash.isStill(moved->path, from));
        {
            const Mounted mounted("none", f.places.homeTrash + "/info", "tmpfs");
            QCOMPARE(mounted.failure(), QString());
            QVERIFY(!f.trash.isStill(moved->path, from));
            QVERIFY(!f.trash.erase(moved->path, &from));
            QVERIFY(!f.trash.restore(moved->path, f.home.path("a"), &from));
        }
        QVERIFY(f.isThere(moved->path));
    }

    void mountIsNotMoved()
    {
        VolumeFixture f;
        f.home.file("file");
        f.home.file("over");
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        const Mounted mountedFile(f.home.path("over"), f.home.path("file"), "", MS_BIND);
        QCOMPARE(mounted.failure() + mountedFile.failure(), QString());
        f.home.file("volume/a");
        for (const auto &path : { f.home.path("volume"), f.home.path("file") }) {
            const auto moved = f.trash.move(path);
            QVERIFY(!moved);
            QCOMPARE(moved.error(), u"It is a drive, or something else that is mounted."_s);
        }
        QVERIFY(f.isThere(f.on("a")));
    }

    void folderThatHoldsAMountIsNotMoved()
    {
        VolumeFixture f;
        f.home.folder("folder/deep/mounted here");
        f.home.folder("folder/deeper");
        f.home.link("way", "folder");
        const Mounted mounted("none", f.home.path("folder/deep/mounted here"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        for (const auto &path :
            { f.home.path("folder"), f.home.path("folder/deep"), f.home.path("way/deep") }) {
            const auto moved = f.trash.move(path);
            QVERIFY(!moved);
            QCOMPARE(moved.error(), u"A drive, or something else, is mounted in it."_s);
        }
        // What only begins alike holds none, and a link to the folder is but a link.
        QVERIFY(f.trash.move(f.home.path("folder/deeper")));
        QVERIFY(f.trash.move(f.home.path("way")));
    }

    void trashOfAVolumeIsNotMovedAgain()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.file("volume/a");
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(moved);
        for (const auto &path : { *moved, f.on(f.own()), f.on(f.own() + "/files") }) {
            QVERIFY(f.trash.holds(path));
            const auto again = f.trash.move(path);
            QVERIFY(!again);
            QCOMPARE(again.error(), u"It is in the Trash already."_s);
        }
        // A copy of a trash that lies elsewhere is a folder like any other.
        f.home.file("volume/copy/" + f.own() + "/files/a");
        QVERIFY(!f.trash.holds(f.on("copy/" + f.own() + "/files/a")));
        QVERIFY(f.trash.move(f.on("copy/" + f.own())));
    }

    void restoresAndErasesOnTheVolume()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.file("volume/a");
        f.home.file("volume/folder/b");
        const auto a = f.trash.move(f.on("a"));
        const auto folder = f.trash.move(f.on("folder"));
        QVERIFY(a && folder);
        QVERIFY(f.trash.items(f.on(f.own())).size() == 2);
        QVERIFY(f.trash.restore(*a, f.on("a")));
        QVERIFY(f.isThere(f.on("a")));
        QVERIFY(f.trash.erase(*folder));
        QVERIFY(f.trash.items(f.on(f.own())).empty());
        QVERIFY(f.names(f.on(f.own() + "/info")).empty());
    }

    void neverMovesBetweenVolumes()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs");
        QCOMPARE(mounted.failure(), QString());
        f.home.file("volume/a");
        const auto moved = f.trash.move(f.on("a"));
        QVERIFY(moved);
        const auto restored = f.trash.restore(*moved, f.home.path("made/a"));
        QVERIFY(!restored);
        QCOMPARE(restored.error(), u"It is on another volume."_s);
        QVERIFY(f.isThere(*moved));
        QVERIFY(!f.isThere(f.home.path("made")));
    }

    void fullDiskIsHelpedByTheReserve()
    {
        VolumeFixture f;
        const Mounted mounted("none", f.home.path("volume"), "tmpfs", 0, "size=4m");
        QCOMPARE(mounted.failure(), QString());
        LinuxSpaceReserve reserve(f.on("home/data/reserve"));
        reserve.replenish();
        struct stat status = {};
        QCOMPARE(::stat(f.on("home/data/reserve").c_str(), &status), 0);
        QCOMPARE(qint64{ status.st_blocks } * 512, qint64{ LinuxSpaceReserve::bytes });
        f.home.fileWith("volume/home/a", "kept");
        fill(f.on("filler"));

        const TrashPlaces places{ .homeTrash = f.on("home/Trash"), .user = f.places.user };
        LinuxTrash without(places, f.reserve, f.clock);
        f.reserve.isKept = false;
        const auto failed = without.move(f.on("home/a"));
        QVERIFY(!failed);
        QCOMPARE(failed.error(), u"There is no space left on the disk."_s);
        QCOMPARE(f.content(f.on("home/a")), std::string("kept"));
        QVERIFY(f.names(f.on("home/Trash/info")).empty());

        LinuxTrash trash(places, reserve, f.clock);
        const auto moved = trash.move(f.on("home/a"));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error()));
        QVERIFY(!f.content(f.on("home/Trash/info/a.trashinfo")).empty());
        // Too little is left for it now, and half a reserve would help nobody.
        QVERIFY(!f.isThere(f.on("home/data/reserve")));
        QVERIFY(trash.erase(*moved));
        LinuxFileRemoval removal;
        QVERIFY(removal.remove(f.on("filler")));
        reserve.replenish();
        QVERIFY(f.isThere(f.on("home/data/reserve")));
        QVERIFY(reserve.release());
        QVERIFY(!reserve.release());
    }
};

QUILLBROOK_SUITE(TestLinuxTrashVolumes, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_LinuxTrashVolumes.moc"
