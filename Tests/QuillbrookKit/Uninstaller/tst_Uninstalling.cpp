// Taking applications away: what goes where, in which order, and what stays, on real files as an ordinary
// user.

#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/RemovalServices.h"
#include "Support/BundleTree.h"
#include "Support/FakeHostApplications.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"
#include "Uninstaller/Uninstalling.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Machine : BundleTree
{
    FakeSpaceReserve reserve;
    FailingFileCalls calls;
    LinuxTrash trash{ { .homeTrash = path("home/.local/share/Trash"), .user = ::getuid() }, reserve, clock,
        calls };
    LinuxFileRemoval removal{ calls };
    FakeHostApplications host;

    [[nodiscard]] RemovalServices removalServices()
    {
        return { .trash = trash, .removal = removal, .files = facts, .clock = clock };
    }
    [[nodiscard]] Uninstalling::Result uninstall(const InstalledApp &app,
        const std::vector<Leftover> &leftovers = {}, const Uninstalling::Watch &watch = {})
    {
        return Uninstalling::uninstall(host, services(), removalServices(),
            { .app = app,
                .leftovers = leftovers,
                .measure = measure(),
                .manner = { .home = home() },
                .watch = watch });
    }
    [[nodiscard]] Leftover leftover(const std::string &name) const
    {
        return { .path = path(name), .kind = LeftoverKind::cache, .bytes = 10 };
    }
    [[nodiscard]] bool isThere(const std::string &name) const { return TrashFixture::isThere(path(name)); }
    [[nodiscard]] bool isTrashed(const std::string &name) const
    {
        return isThere("home/.local/share/Trash/files/" + name);
    }
    [[nodiscard]] InstalledApp bundle() const
    {
        tree.file("home/Applications/Maker.app/Contents/program", 500);
        return { .app = { .path = path("home/Applications/Maker.app"),
                     .name = u"Maker"_s,
                     .bundleID = u"com.maker.app"_s,
                     .bytes = 500 } };
    }
    [[nodiscard]] InstalledApp appImage() const
    {
        tree.file("home/Applications/Draw.AppImage", 700);
        tree.file("home/.local/share/applications/draw.desktop", 30);
        return { .app = { .path = path("home/Applications/Draw.AppImage"),
                     .name = u"Draw"_s,
                     .bundleID = u"draw"_s,
                     .bytes = 730 },
            .origin = AppOrigin::appImage,
            .goes = { path("home/.local/share/applications/draw.desktop"),
                path("home/Applications/Draw.AppImage") } };
    }
    [[nodiscard]] InstalledApp flatpak() const
    {
        tree.file("home/.local/share/flatpak/app/org.one.App/files", 900);
        return { .app = { .path = path("home/.local/share/flatpak/app/org.one.App"),
                     .name = u"One"_s,
                     .bundleID = u"org.one.App"_s,
                     .bytes = 900,
                     .fromAppStore = true },
            .origin = AppOrigin::flatpakOfUser };
    }
};

} // namespace

class TestUninstalling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leftoversGoFirstAndTheApplicationLast()
    {
        Machine machine;
        const auto app = machine.bundle();
        machine.tree.file("home/Library/Caches/com.maker.app/odd\xff\n", 10);
        const auto result = machine.uninstall(app, { machine.leftover("home/Library/Caches/com.maker.app") });
        QVERIFY(!result.refusal && !result.takenAway);
        QCOMPARE(result.removals.size(), size_t(2));
        QCOMPARE(result.removals[0].trashed->label, u"Maker · Cache"_s);
        QCOMPARE(result.removals[1].trashed->label, u"Maker"_s);
        QCOMPARE(result.removals[1].bytes, qint64(500));
        QVERIFY(machine.isTrashed("com.maker.app/odd\xff\n") && machine.isTrashed("Maker.app"));
        QVERIFY(!machine.isThere("home/Applications/Maker.app"));
    }

    void aFailureDoesNotStopTheRest_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("no permission") << u"permission"_s;
        QTest::newRow("vanished") << u"vanished"_s;
        QTest::newRow("a guard") << u"guard"_s;
        QTest::newRow("a full disk") << u"full"_s;
    }
    void aFailureDoesNotStopTheRest()
    {
        QFETCH(QString, what);
        Machine machine;
        const auto app = machine.bundle();
        machine.tree.file("home/locked/cache", 10);
        auto leftover = machine.leftover("home/locked/cache");
        if (what == u"permission")
            machine.tree.permissions("home/locked", 0555);
        if (what == u"vanished")
            leftover = machine.leftover("home/locked/none");
        if (what == u"guard")
            leftover = machine.leftover("home");
        if (what == u"full")
            machine.calls.before = [](std::string_view call, const char *name) {
                return call == "openat" && std::string_view(name).find("cache") != std::string_view::npos
                    ? ENOSPC
                    : 0;
            };
        const auto result = machine.uninstall(app, { leftover });
        QCOMPARE(result.removals.size(), size_t(2));
        QVERIFY(result.removals[0].error);
        QVERIFY(!result.removals[0].trashed);
        QVERIFY(result.removals[1].succeeded());
        QVERIFY(machine.isThere("home/locked/cache") && machine.isTrashed("Maker.app"));
    }

    void aLinkGoesAndNotWhatItLeadsTo()
    {
        Machine machine;
        const auto app = machine.bundle();
        machine.tree.file("home/Documents/letter", 10);
        machine.tree.link("home/.config-maker", machine.path("home/Documents"));
        const auto result = machine.uninstall(app, { machine.leftover("home/.config-maker") });
        QVERIFY(result.removals[0].succeeded());
        QVERIFY(machine.isThere("home/Documents/letter") && !machine.isThere("home/.config-maker"));
    }

    void everyPieceOfAnAppImageHasItsLine()
    {
        Machine machine;
        const auto result = machine.uninstall(machine.appImage());
        QCOMPARE(result.removals.size(), size_t(2));
        QCOMPARE(result.removals[0].trashed->label, u"Draw · draw.desktop"_s);
        QCOMPARE(result.removals[0].bytes + result.removals[1].bytes, qint64(730));
        QVERIFY(machine.isTrashed("Draw.AppImage") && machine.isTrashed("draw.desktop"));
    }

    void whatMustStayIsNotTouched_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("line");
        QTest::newRow("running") << u"running"_s << u"Draw is running — quit it and try again."_s;
        QTest::newRow("nobody knows")
            << u"unknown"_s
            << u"Quillbrook can't tell whether Draw is running, and leaves it alone until it can."_s;
        QTest::newRow("itself") << u"self"_s << u"Draw stays."_s;
        QTest::newRow("an administrator's") << u"package"_s << u"Draw stays."_s;
    }
    void whatMustStayIsNotTouched()
    {
        QFETCH(QString, what);
        Machine machine;
        auto app = machine.appImage();
        machine.tree.file("home/cache", 10);
        if (what == u"running")
            machine.host.running = true;
        if (what == u"unknown")
            machine.host.running = std::nullopt;
        app.isSelf = what == u"self";
        if (what == u"package")
            app.origin = AppOrigin::package;
        const auto result = machine.uninstall(app, { machine.leftover("home/cache") });
        QTEST(result.refusal.value_or(QString()), "line");
        QVERIFY(result.removals.empty());
        QVERIFY(machine.isThere("home/cache") && machine.isThere("home/Applications/Draw.AppImage"));
    }

    void aFlatpakGoesAfterItsLeftovers()
    {
        Machine machine;
        machine.tree.file("home/.var/app/org.one.App/x", 10);
        const auto result
            = machine.uninstall(machine.flatpak(), { machine.leftover("home/.var/app/org.one.App") });
        QCOMPARE(result.removals.size(), size_t(1));
        QCOMPARE(result.takenAway->value(), qint64(900));
        QCOMPARE(machine.host.taken, std::vector<QString>{ u"org.one.App"_s });
        // Its folder is the tool's, and never goes to the Trash.
        QVERIFY(machine.isThere("home/.local/share/flatpak/app/org.one.App"));
    }

    void aFlatpakThatCantGoKeepsItsLeftovers()
    {
        Machine machine;
        machine.tree.file("home/.var/app/org.one.App/x", 10);
        machine.host.obstacleText = u"One is not there any more."_s;
        const auto result
            = machine.uninstall(machine.flatpak(), { machine.leftover("home/.var/app/org.one.App") });
        QCOMPARE(result.refusal, machine.host.obstacleText);
        QVERIFY(machine.isThere("home/.var/app/org.one.App/x") && machine.host.taken.empty());
    }

    void aFlatpakThatFailsLeavesItsLeftoversInTheTrash()
    {
        Machine machine;
        machine.tree.file("home/.var/app/org.one.App/x", 10);
        machine.host.failure = u"One could not be uninstalled: no room"_s;
        const auto result
            = machine.uninstall(machine.flatpak(), { machine.leftover("home/.var/app/org.one.App") });
        QCOMPARE(result.takenAway->error(), *machine.host.failure);
        QVERIFY(result.removals[0].trashed);
        QVERIFY(machine.isTrashed("org.one.App/x"));
    }

    void aStopLeavesTheApplicationAndSaysSo_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<qsizetype>("stopBefore");
        QTest::addColumn<QString>("line");
        QTest::newRow("a bundle") << u"bundle"_s << qsizetype(1) << u"Maker was left where it is."_s;
        QTest::newRow("an AppImage") << u"image"_s << qsizetype(1) << u"Draw was left where it is."_s;
        QTest::newRow("a Flatpak") << u"flatpak"_s << qsizetype(1) << u"One was left where it is."_s;
        // Nothing is left to be stopped.
        QTest::newRow("while the bundle itself goes") << u"bundle"_s << qsizetype(2) << QString();
    }
    void aStopLeavesTheApplicationAndSaysSo()
    {
        QFETCH(QString, kind);
        QFETCH(qsizetype, stopBefore);
        QFETCH(QString, line);
        Machine machine;
        const auto app = kind == u"bundle" ? machine.bundle()
            : kind == u"image"             ? machine.appImage()
                                           : machine.flatpak();
        machine.tree.file("home/.cache/own/x", 10);
        std::stop_source stop;
        const Uninstalling::Watch watch{ .before
            =
                [&](qsizetype number, qsizetype, const PathRemoval::Item &, qint64) {
                    if (number == stopBefore)
                        stop.request_stop();
                },
            .stop = stop.get_token() };
        const auto result = machine.uninstall(app, { machine.leftover("home/.cache/own") }, watch);
        QVERIFY(machine.isTrashed("own/x"));
        QCOMPARE(result.takenAway ? result.takenAway->error() : QString(), line);
        QCOMPARE(TrashFixture::isThere(app.app.path), !line.isEmpty());
        QVERIFY(machine.host.taken.empty());
    }

    void orphansAreNamedByGuessAndKind()
    {
        const auto items = Uninstalling::items({ { .path = "/a/com.maker.my-tool",
            .bundleID = u"com.maker.my-tool"_s,
            .kind = LeftoverKind::cache,
            .bytes = 5 } });
        QCOMPARE(items,
            (std::vector<PathRemoval::Item>{
                { .path = "/a/com.maker.my-tool", .bytes = 5, .label = u"My Tool · Cache"_s } }));
    }
};

QUILLBROOK_SUITE(TestUninstalling, QCoreApplication, &giveUpRoot)
#include "tst_Uninstalling.moc"
