// What the Trash knows about where its things came from.

#include "Platform/Linux/Trash/TrashNote.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QTest>

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

    void thingMayComeFromWhereItsNoteSays()
    {
        TrashFixture f;
        f.home.file("real/odd\xff\n%41");
        f.home.link("linked", "real");
        const auto given = f.home.path("linked//./odd\xff\n%41");
        const auto moved = f.trash.move(given);
        QVERIFY(moved);
        QVERIFY(f.trash.mayComeFrom(*moved, given, f.clock.moment));
        QVERIFY(f.trash.mayComeFrom(*moved, f.home.path("linked/odd\xff\n%41"), f.clock.moment));
        QVERIFY(!f.trash.mayComeFrom(*moved, f.home.path("linked/odd\xff\n%41/more"), f.clock.moment));
        QVERIFY(!f.trash.mayComeFrom(*moved, f.home.path("elsewhere/odd\xff\n%41"), f.clock.moment));
        QVERIFY(!f.trash.mayComeFrom(*moved, "", f.clock.moment));
    }

    void timeInANote_data()
    {
        QTest::addColumn<QByteArray>("date");
        QTest::addColumn<bool>("mayBe");
        QTest::newRow("the same moment") << QByteArray("2024-06-15T12:00:00") << true;
        QTest::newRow("a slow disk") << QByteArray("2024-06-15T11:59:50") << true;
        QTest::newRow("longer before") << QByteArray("2024-06-15T11:59:49") << false;
        QTest::newRow("a minute after") << QByteArray("2024-06-15T12:01:00") << false;
        QTest::newRow("in a zone ahead") << QByteArray("2024-06-15T17:45:00") << true;
        QTest::newRow("in a zone behind") << QByteArray("2024-06-15T05:00:00") << true;
        QTest::newRow("in the first zone of the day") << QByteArray("2024-06-16T02:00:00") << true;
        QTest::newRow("in no zone") << QByteArray("2024-06-15T17:50:00") << false;
        QTest::newRow("ahead of all zones") << QByteArray("2024-06-16T02:15:00") << false;
        QTest::newRow("a day later") << QByteArray("2024-06-16T12:00:00") << false;
        QTest::newRow("a year before") << QByteArray("2023-06-15T12:00:00") << false;
        QTest::newRow("a carriage return") << QByteArray("2023-06-15T12:00:00\r") << false;
        QTest::newRow("no date") << QByteArray("yesterday") << true;
        QTest::newRow("empty") << QByteArray() << true;
    }
    void timeInANote()
    {
        QFETCH(QByteArray, date);
        const auto note = "[Trash Info]\nPath=/a\nDeletionDate=" + date.toStdString() + '\n';
        const QDateTime moment(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);
        QTEST(TrashNote::mayBeOf(note, moment), "mayBe");
        QVERIFY(TrashNote::mayBeOf(note, QDateTime()));
        QVERIFY(TrashNote::mayBeOf("[Trash Info]\nPath=/a\n", moment));
    }

    void thingThatWentAtAnotherTimeIsAnother()
    {
        TrashFixture f;
        f.home.file("a");
        const auto first = f.clock.moment;
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(moved);
        QVERIFY(f.trash.restore(*moved, f.home.path("a")));
        f.clock.moment = first.addDays(3);
        QCOMPARE(f.trash.move(f.home.path("a")), moved);
        QVERIFY(!f.trash.mayComeFrom(*moved, f.home.path("a"), first));
        QVERIFY(f.trash.mayComeFrom(*moved, f.home.path("a"), f.clock.moment));
    }

    void thingWithoutANoteMayComeFromAnywhere()
    {
        TrashFixture f;
        f.home.file("a");
        f.home.file("b");
        const auto a = f.trash.move(f.home.path("a"));
        const auto b = f.trash.move(f.home.path("b"));
        QVERIFY(a && b);
        QCOMPARE(::unlink(f.note("a").c_str()), 0);
        f.home.fileWith(".local/share/Trash/info/b.trashinfo", "no note at all");
        for (const auto &path : { *a, *b, f.files("gone"), f.home.path("outside") })
            QVERIFY(f.trash.mayComeFrom(path, "/anywhere", f.clock.moment));
    }

    void oddThingsInThePlaceOfANoteAreNone()
    {
        TrashFixture f;
        f.home.file("a");
        const auto a = f.trash.move(f.home.path("a"));
        QVERIFY(a);
        QCOMPARE(::unlink(f.note("a").c_str()), 0);
        f.home.pipe(".local/share/Trash/info/a.trashinfo");
        QVERIFY(f.trash.mayComeFrom(*a, "/anywhere", f.clock.moment));
        QCOMPARE(::unlink(f.note("a").c_str()), 0);
        f.home.fileWith("elsewhere", "[Trash Info]\nPath=/b\n");
        f.home.link(".local/share/Trash/info/a.trashinfo", "../../../../elsewhere");
        QVERIFY(f.trash.mayComeFrom(*a, "/anywhere", f.clock.moment));
    }

    void originFromTheTopOfAVolumeIsComparedFromThere()
    {
        TrashFixture f;
        f.home.file("folder/a");
        const auto moved = f.trash.move(f.home.path("folder/a"));
        QVERIFY(moved);
        f.home.fileWith(".local/share/Trash/info/a.trashinfo", "[Trash Info]\nPath=folder/a\n");
        QVERIFY(f.trash.mayComeFrom(*moved, f.home.path("folder/a"), f.clock.moment));
        QVERIFY(!f.trash.mayComeFrom(*moved, f.home.path("other folder/a"), f.clock.moment));
        QVERIFY(!f.trash.mayComeFrom(*moved, f.home.path("folder/b"), f.clock.moment));
    }
};

QUILLBROOK_SUITE(TestLinuxTrashOrigins, QCoreApplication)
#include "tst_LinuxTrashOrigins.moc"
