// What the Trash knows about where its things came from.

#include "Platform/Linux/Trash/TrashNote.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

#include <functional>
#include <sys/stat.h>

using namespace Quillbrook;

class TestLinuxTrashOrigins : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void originInANote_data()
    {
        QTest::addColumn<QByteArray>("note");
        QTest::addColumn<std::optional<std::string>>("origin");
        const QByteArray group = "[Trash Info]\n";
        const auto told = [](const char *path) { return std::optional<std::string>(path); };
        const std::optional<std::string> nothing;
        QTest::newRow("plain") << group + "Path=/home/me/a\nDeletionDate=2024-05-01T08:30:00\n"
                               << told("/home/me/a");
        QTest::newRow("encoded") << group + "Path=/a%20%C3%a4%0A%ff%25\n" << told("/a \xc3\xa4\n\xff%");
        QTest::newRow("not encoded, as some programs write") << group + "Path=/a b%\n" << told("/a b%");
        QTest::newRow("signs that encode nothing")
            << group + "Path=/%4/%zz/%4z%z4/%" << told("/%4/%zz/%4z%z4/%");
        QTest::newRow("from the top of a volume") << group + "Path=a/b\n" << told("a/b");
        QTest::newRow("after the date") << group + "DeletionDate=x\nPath=/a\n" << told("/a");
        QTest::newRow("the first of two") << group + "Path=/a\nPath=/b\n" << told("/a");
        QTest::newRow("a carriage return") << group + "Path=/a\r\n" << told("/a");
        QTest::newRow("empty") << group + "Path=\n" << nothing;
        QTest::newRow("missing") << group + "DeletionDate=x\n" << nothing;
        QTest::newRow("another key") << group + "OldPath=/a\n" << nothing;
        QTest::newRow("no group") << QByteArray("\nPath=/a\n") << nothing;
        QTest::newRow("nothing") << QByteArray() << nothing;
    }
    void originInANote()
    {
        QFETCH(QByteArray, note);
        QTEST(TrashNote::origin(std::string_view(note.data(), static_cast<size_t>(note.size()))), "origin");
    }

    void everyPathIsReadAsItWasWritten()
    {
        std::string path = "/";
        for (int byte = 1; byte < 256; ++byte)
            path += static_cast<char>(byte);
        QCOMPARE(TrashNote::origin(TrashNote::text(path, QDateTime::currentDateTimeUtc())), path);
    }

    void timeInANote_data()
    {
        QTest::addColumn<QByteArray>("date");
        QTest::addColumn<bool>("is");
        QTest::newRow("the same moment") << QByteArray("2024-06-15T12:00:00") << true;
        QTest::newRow("a slow disk") << QByteArray("2024-06-15T11:59:50") << true;
        QTest::newRow("longer before") << QByteArray("2024-06-15T11:59:49") << false;
        QTest::newRow("a minute after") << QByteArray("2024-06-15T12:01:00") << false;
        QTest::newRow("the time of another zone") << QByteArray("2024-06-15T14:00:00") << false;
        QTest::newRow("no date") << QByteArray("yesterday") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }
    void timeInANote()
    {
        QFETCH(QByteArray, date);
        const auto note = "[Trash Info]\nPath=/a\nDeletionDate=" + date.toStdString() + '\n';
        const QDateTime moment(QDate(2024, 6, 15), QTime(12, 0), Qt::LocalTime);
        QTEST(TrashNote::isOf(note, moment), "is");
        QVERIFY(!TrashNote::isOf(note, QDateTime()));
        QVERIFY(!TrashNote::isOf("[Trash Info]\nPath=/a\n", moment));
    }

    // What a row knows of its thing, and what lies under its name by then.
    void onlyTheThingItselfIsStillIt_data()
    {
        QTest::addColumn<bool>("hidesInodes");
        QTest::addColumn<bool>("hasIdentity");
        QTest::newRow("by its inode") << false << true;
        QTest::newRow("by its whole note") << true << true;
        QTest::newRow("a row from before there were identities") << false << false;
    }
    void onlyTheThingItselfIsStillIt()
    {
        QFETCH(bool, hidesInodes);
        QFETCH(bool, hasIdentity);
        TrashFixture f;
        f.calls.hidesInodes = hidesInodes;
        f.home.file("real/odd\xff\n%41");
        f.home.link("linked", "real");
        const auto given = f.home.path("linked//./odd\xff\n%41");
        const auto moved = f.trash.move(given, TrashOrder());
        QVERIFY(moved && moved->identity);
        QCOMPARE(moved->identity->born == 0, hidesInodes);
        const Provenance from{ .originalPath = given,
            .movedAt = f.clock.moment,
            .identity = hasIdentity ? moved->identity : std::nullopt };
        QVERIFY(f.trash.isStill(moved->path, from));
        QVERIFY(!f.trash.isStill(f.files("gone"), from));
        QVERIFY(!f.trash.isStill(f.home.path("outside"), from));

        QVERIFY(f.trash.restore(moved->path, given, &from));
        f.clock.moment = f.clock.moment.addDays(3);
        f.home.file("other/odd\xff\n%41");
        QCOMPARE(f.trash.move(f.home.path("other/odd\xff\n%41")), moved->path);
        QVERIFY(!f.trash.isStill(moved->path, from));
        QCOMPARE(f.trash.erase(moved->path, &from).error(), Trash::somethingElse());
        QCOMPARE(f.trash.restore(moved->path, given, &from).error(), Trash::somethingElse());
        QVERIFY(TrashFixture::isThere(moved->path) && TrashFixture::isThere(f.note("odd\xff\n%41")));
    }

    // A note that is missing, not whole or something else says nothing, and what it is asked of stays.
    void withoutItsWholeNoteNothingIsTrustedThatHasNoInode_data()
    {
        QTest::addColumn<std::function<void(const std::string &)>>("spoil");
        const auto row = [](const char *name, std::function<void(const std::string &)> spoil) {
            QTest::newRow(name) << std::move(spoil);
        };
        row("gone", [](const auto &) {});
        row("empty", [](const auto &note) { std::ofstream(note).close(); });
        row("cut short", [](const auto &note) { std::ofstream(note) << "[Trash Info]\nPath=/a"; });
        row("a folder", [](const auto &note) { std::filesystem::create_directory(note); });
        row("a link", [](const auto &note) { std::filesystem::create_symlink("/etc/passwd", note); });
        row("a pipe", [](const auto &note) { QCOMPARE(::mkfifo(note.c_str(), 0600), 0); });
    }
    void withoutItsWholeNoteNothingIsTrustedThatHasNoInode()
    {
        QFETCH(std::function<void(const std::string &)>, spoil);
        TrashFixture f;
        f.home.file("a");
        f.calls.hidesInodes = true;
        const auto moved = f.trash.move(f.home.path("a"), TrashOrder());
        QVERIFY(moved);
        QCOMPARE(::unlink(f.note("a").c_str()), 0);
        spoil(f.note("a"));
        Provenance from{
            .originalPath = f.home.path("a"), .movedAt = f.clock.moment, .identity = moved->identity
        };
        QVERIFY(!f.trash.isStill(moved->path, from));
        from.identity.reset();
        QVERIFY(!f.trash.isStill(moved->path, from));
    }

    void originFromTheTopOfAVolumeIsComparedFromThere()
    {
        TrashFixture f;
        f.home.file("folder/a");
        const auto moved = f.trash.move(f.home.path("folder/a"));
        QVERIFY(moved);
        f.home.fileWith(".local/share/Trash/info/a.trashinfo", TrashNote::text("folder/a", f.clock.moment));
        const auto isFrom = [&](const char *path) {
            return f.trash.isStill(*moved, { .originalPath = f.home.path(path), .movedAt = f.clock.moment });
        };
        QVERIFY(isFrom("folder/a"));
        QVERIFY(!isFrom("other folder/a"));
        QVERIFY(!isFrom("folder/b"));
    }

    // What a kill leaves of a move that never came to its end.
    void loneNoteIsDroppedOnlyWhereItIsOurs_data()
    {
        QTest::addColumn<QByteArray>("note");
        QTest::addColumn<bool>("hasThing");
        QTest::addColumn<bool>("isDropped");
        QTest::newRow("whole") << QByteArray("[Trash Info]\nPath=/a\n") << false << true;
        QTest::newRow("cut short") << QByteArray("[Trash In") << false << true;
        QTest::newRow("empty") << QByteArray() << false << true;
        QTest::newRow("another's") << QByteArray("[Trash Info]\nPath=/b\n") << false << false;
        QTest::newRow("longer") << QByteArray("[Trash Info]\nPath=/a\nX=1\n") << false << false;
        QTest::newRow("with a thing") << QByteArray("[Trash Info]\nPath=/a\n") << true << false;
    }
    void loneNoteIsDroppedOnlyWhereItIsOurs()
    {
        QFETCH(QByteArray, note);
        QFETCH(bool, hasThing);
        TrashFixture f;
        f.home.fileWith(".local/share/Trash/info/a.trashinfo", note.toStdString());
        f.home.folder(".local/share/Trash/files");
        if (hasThing)
            f.home.link(".local/share/Trash/files/a", "nowhere");
        f.trash.dropLoneNote(f.files("a"), "[Trash Info]\nPath=/a\n");
        QTEST(!TrashFixture::isThere(f.note("a")), "isDropped");
    }

    void eachNameIsAnnouncedBeforeItsNoteIsMade()
    {
        TrashFixture f;
        f.home.file("a");
        f.home.fileWith(".local/share/Trash/info/a.trashinfo", "taken");
        std::vector<std::string> announced;
        const auto announce = [&](const TrashedThing &planned) -> std::expected<void, QString> {
            const auto name = planned.path.substr(planned.path.rfind('/') + 1);
            announced.push_back(name);
            if (name == "a.2" && TrashFixture::isThere(f.note(name)))
                return std::unexpected(QStringLiteral("The note came first."));
            return {};
        };
        QCOMPARE(f.trash.move(f.home.path("a"), { .announce = announce })->path, f.files("a.2"));
        QCOMPARE(announced, (std::vector<std::string>{ "a.2" }));

        f.home.file("b");
        const auto refuse = [](const TrashedThing &) -> std::expected<void, QString> {
            return std::unexpected(QStringLiteral("No."));
        };
        QCOMPARE(f.trash.move(f.home.path("b"), { .announce = refuse }).error(), QStringLiteral("No."));
        QVERIFY(TrashFixture::isThere(f.home.path("b")) && !TrashFixture::isThere(f.note("b")));
    }

    // Between the question and the move the name is given to something else, which stays.
    void whatIsExchangedAfterItWasJudgedStays()
    {
        TrashFixture f;
        f.home.fileWith("folder/a", "judged");
        f.home.fileWith("folder/b", "another");
        const auto exchange = [&](const TrashedThing &) -> std::expected<void, QString> {
            std::filesystem::rename(f.home.path("folder/a"), f.home.path("kept"));
            std::filesystem::rename(f.home.path("folder/b"), f.home.path("folder/a"));
            return {};
        };
        QVERIFY(!f.trash.move(f.home.path("folder/a"), { .announce = exchange }));
        QCOMPARE(TrashFixture::content(f.home.path("folder/a")), std::string("another"));
        QVERIFY(TrashFixture::names(f.places.homeTrash + "/info").empty());
    }

    // The folder that was judged is the one that is taken from, wherever its path leads by then.
    void folderThatIsExchangedForALinkChangesNothing()
    {
        TrashFixture f;
        f.home.fileWith("folder/a", "judged");
        f.home.fileWith("elsewhere/a", "another");
        std::string judged;
        const auto exchange = [&](const TakenThing &thing) {
            judged = thing.path;
            std::filesystem::rename(f.home.path("folder"), f.home.path("moved"));
            std::filesystem::create_symlink("elsewhere", f.home.path("folder"));
            return std::optional<QString>();
        };
        const auto moved = f.trash.move(f.home.path("folder/a"), { .judge = exchange });
        QVERIFY(moved);
        QCOMPARE(judged, f.home.path("folder/a"));
        QCOMPARE(TrashFixture::content(moved->path), std::string("judged"));
        QCOMPARE(TrashFixture::content(f.home.path("elsewhere/a")), std::string("another"));
    }
};

QUILLBROOK_SUITE(TestLinuxTrashOrigins, QCoreApplication)
#include "tst_LinuxTrashOrigins.moc"
