#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/Linux/KeptElsewhere.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Removal/Reclaimer.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(FileKind)

class TestKeptElsewhere : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void homeIsFoundByItsOtherMounts_data()
    {
        QTest::addColumn<QByteArray>("mountinfo");
        QTest::addColumn<std::vector<std::string>>("others");
        const auto row = [](const char *name, QByteArray mountinfo, std::vector<std::string> others) {
            QTest::newRow(name) << mountinfo << std::move(others);
        };
        row("none", "1 0 8:1 / / rw - t s rw\n2 1 8:2 / /mnt/other rw - t s rw\n", {});
        row("the root bound elsewhere", "1 0 8:1 / / rw - t s rw\n2 1 8:1 / /mnt/root rw - t s rw\n",
            { "/mnt/root/home/ann" });
        row("the top of a file system whose folder is the home of all",
            "1 0 8:1 /@ / rw - t s rw\n2 1 8:1 /@home /home rw - t s rw\n3 1 8:1 / /mnt/top rw - t s rw\n",
            { "/mnt/top/@home/ann" });
        row("a folder beside it", "1 0 8:1 / / rw - t s rw\n2 1 8:1 /srv /mnt/srv rw - t s rw\n", {});
        row("the home itself", "1 0 8:1 / / rw - t s rw\n2 1 8:1 /home/ann /mnt/me rw - t s rw\n",
            { "/mnt/me" });
        row("hidden by a later one",
            "1 0 8:1 / / rw - t s rw\n2 1 8:2 / /home rw - t s rw\n"
            "3 1 8:3 / /home rw - t s rw\n4 1 8:3 / /mnt/homes rw - t s rw\n",
            { "/mnt/homes/ann" });
    }
    void homeIsFoundByItsOtherMounts()
    {
        QFETCH(QByteArray, mountinfo);
        QTEST(otherMountsOf("/home/ann", MountTable::parse(mountinfo.toStdString())), "others");
    }

    // By the guards of what is picked, and by the reclaimer: where a kept link leads, and what holds that,
    // but not what is in it.
    void whereAKeptLinkLeadsIsKept()
    {
        TrashFixture f;
        f.home.file("cache/one/docs/inner");
        f.home.file("cache/two/keys/inner");
        f.home.file("cache/three");
        f.home.link("Documents", "cache/one/docs");
        f.home.link(".ssh", "cache/two/keys");
        const auto home = f.home.path();
        const auto guards = LinuxGuards::guards({ .homes = { home }, .trashes = f.places });
        const auto isRefused = [&](const std::string &name) {
            return PathRemoval::refusal(home + '/' + name, home, &guards).has_value();
        };
        for (const auto *kept : { "cache/one/docs", "cache/one", "cache/two/keys", "cache" })
            QVERIFY2(isRefused(kept), kept);
        for (const auto *free : { "cache/one/docs/inner", "cache/two/keys/inner", "cache/three" })
            QVERIFY2(!isRefused(free), free);

        LinuxFileFacts files;
        LinuxFileRemoval removal;
        const Reclaimer reclaimer{ .services
            = { .trash = f.trash, .removal = removal, .files = files, .clock = f.clock, .guards = &guards },
            .home = home };
        for (const auto disposal : { Reclaimer::Disposal::toTrash, Reclaimer::Disposal::permanent }) {
            f.home.file("cache/three");
            const auto outcome = reclaimer.reclaim({ .rule = { .title = u"Caches"_s, .safety = Safety::safe },
                                                       .path = QString::fromStdString(f.home.path("cache")),
                                                       .rawPath = f.home.path("cache"),
                                                       .bytes = 3 },
                disposal);
            QVERIFY(outcome.error);
            QCOMPARE(TrashFixture::names(f.home.path("cache")), (std::vector<std::string>{ "one", "two" }));
        }
    }

    // The path passes, and leads elsewhere by the time at which the thing is taken.
    void guardsAreAskedAboutTheFolderThatIsTakenFrom()
    {
        TrashFixture f;
        f.home.file("free/x");
        f.home.file(".ssh/x");
        auto guards = LinuxGuards::guards({ .homes = { f.home.path() }, .trashes = f.places });
        const auto resolve = guards.withoutLinks;
        int asked = 0;
        guards.withoutLinks = [&](const std::string &path) {
            auto resolved = resolve(path);
            if (path == f.home.path("free/x") && ++asked == 1) {
                std::filesystem::rename(f.home.path("free"), f.home.path("moved"));
                std::filesystem::create_symlink(".ssh", f.home.path("free"));
            }
            return resolved;
        };
        LinuxFileFacts files;
        LinuxFileRemoval removal;
        const RemovalServices services{
            .trash = f.trash, .removal = removal, .files = files, .clock = f.clock
        };
        for (const bool permanent : { false, true }) {
            const auto removed
                = PathRemoval::remove(services, { .path = f.home.path("free/x"), .label = u"x"_s },
                    { .permanent = permanent, .home = f.home.path(), .host = &guards });
            QVERIFY(removed.error && removed.error->startsWith(u"That is where your keys"_s));
            QVERIFY(TrashFixture::isThere(f.home.path(".ssh/x")));
        }
    }

    void onlyWhatWasPickedGoes_data()
    {
        QTest::addColumn<bool>("isExchanged");
        QTest::addColumn<FileKind>("kind");
        QTest::addColumn<bool>("goes");
        QTest::newRow("the same") << false << FileKind::other << true;
        QTest::newRow("another file by that name") << true << FileKind::other << false;
        QTest::newRow("of another kind") << false << FileKind::directory << false;
    }
    void onlyWhatWasPickedGoes()
    {
        QFETCH(bool, isExchanged);
        QFETCH(FileKind, kind);
        TrashFixture f;
        f.home.file("thing");
        LinuxFileFacts files;
        LinuxFileRemoval removal;
        const auto inode = inodeAt(f.home.path("thing"));
        QVERIFY(inode);
        if (isExchanged) {
            std::filesystem::rename(f.home.path("thing"), f.home.path("old"));
            f.home.file("thing");
        }
        const auto removed
            = PathRemoval::remove({ .trash = f.trash, .removal = removal, .files = files, .clock = f.clock },
                { .path = f.home.path("thing"),
                    .label = u"thing"_s,
                    .picked
                    = PathRemoval::Picked{ .isDirectory = kind == FileKind::directory, .inode = *inode } },
                { .home = "/home/someone" });
        QTEST(removed.succeeded(), "goes");
        if (removed.error)
            QCOMPARE(*removed.error, u"thing is not what was measured any more. Scan again."_s);
    }
};

QUILLBROOK_SUITE(TestKeptElsewhere, QCoreApplication)
#include "tst_KeptElsewhere.moc"
