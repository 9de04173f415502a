#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Support/MadeUpHome.h"
#include "Support/Suite.h"

#include <QFile>
#include <QTest>

using namespace Quillbrook;

class TestLinuxFileFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindIsThatOfThePathItself()
    {
        TempTree tree;
        tree.folder("folder");
        tree.file("file", 1);
        tree.link("link", "folder");
        tree.link("dangling", "nowhere");
        tree.pipe("pipe");
        const LinuxFileFacts facts;
        QCOMPARE(facts.kind(tree.path("folder")), FileKind::directory);
        QCOMPARE(facts.kind(tree.path("file")), FileKind::other);
        QCOMPARE(facts.kind(tree.path("pipe")), FileKind::other);
        QCOMPARE(facts.kind(tree.path("link")), FileKind::symlink);
        QCOMPARE(facts.kind(tree.path("dangling")), FileKind::symlink);
        QVERIFY(!facts.kind(tree.path("nothing")));
        QVERIFY(!facts.kind(tree.path("file/below")));
        QVERIFY(!facts.kind({}));
    }

    void namesAreBytes()
    {
        TempTree tree;
        tree.folder("a\xff");
        QCOMPARE(LinuxFileFacts().kind(tree.path("a\xff")), FileKind::directory);
    }

    void datesFollowLinksAndAreWholeSeconds()
    {
        MadeUpHome home;
        home.tree.folder("folder");
        home.tree.link("link", "folder");
        const QDateTime moment(QDate(2020, 2, 29), QTime(23, 59, 59, 999), Qt::UTC);
        home.touch("folder", moment);
        const auto dates = LinuxFileFacts().dates(home.tree.path("link"));
        QVERIFY(dates);
        QCOMPARE(dates->lastModified, QDateTime(QDate(2020, 2, 29), QTime(23, 59, 59), Qt::UTC));
        QCOMPARE(dates, LinuxFileFacts().dates(home.tree.path("folder")));
    }

    void datesBefore1970AreTold()
    {
        MadeUpHome home;
        home.tree.folder("folder");
        const QDateTime moment(QDate(1969, 7, 20), QTime(20, 17), Qt::UTC);
        home.touch("folder", moment);
        QCOMPARE(LinuxFileFacts().dates(home.tree.path("folder"))->lastModified, moment);
    }

    void birthTimeCountsFromTheFirstSecondOn()
    {
        QVERIFY(!birthTime(-5));
        QVERIFY(!birthTime(0));
        QCOMPARE(birthTime(1), QDateTime(QDate(1970, 1, 1), QTime(0, 0, 1), Qt::UTC));
    }

    void birthTimeIsThatOfTheMaking()
    {
        TempTree tree;
        const auto before = QDateTime::currentDateTimeUtc().addSecs(-2);
        tree.folder("folder");
        const auto created = LinuxFileFacts().dates(tree.path("folder"))->created;
        if (!created)
            QSKIP("this file system keeps no birth times");
        QVERIFY(*created >= before && *created <= QDateTime::currentDateTimeUtc());
    }

    void birthTimeIsAbsentWhereThereIsNone()
    {
        const auto dates = LinuxFileFacts().dates("/proc/self");
        QVERIFY(dates);
        QVERIFY(!dates->created);
    }

    void datesOfWhatIsNotThereAreAbsent()
    {
        TempTree tree;
        tree.link("dangling", "nowhere");
        tree.link("ring", "ring");
        QVERIFY(!LinuxFileFacts().dates(tree.path("dangling")));
        QVERIFY(!LinuxFileFacts().dates(tree.path("ring")));
        QVERIFY(!LinuxFileFacts().dates(tree.path("nothing")));
    }

    void contentsAreReadWholeUpToTheLimit()
    {
        TempTree tree;
        tree.file("file", 1000);
        tree.file("empty", 0);
        tree.link("link", "file");
        const LinuxFileReading reading;
        QCOMPARE(reading.contents(tree.path("file"), 1000), QByteArray(1000, 'q'));
        QCOMPARE(reading.contents(tree.path("link"), 5000), QByteArray(1000, 'q'));
        QCOMPARE(reading.contents(tree.path("empty"), 0), QByteArray());
        QVERIFY(!reading.contents(tree.path("file"), 999));
    }

    void whatIsNoRegularFileIsAbsent()
    {
        TempTree tree;
        tree.folder("folder");
        tree.pipe("pipe");
        const LinuxFileReading reading;
        QVERIFY(!reading.contents(tree.path("folder"), 1000));
        QVERIFY(!reading.contents(tree.path("pipe"), 1000));
        QVERIFY(!reading.contents(tree.path("nothing"), 1000));
        QVERIFY(!reading.contents("/dev/zero", 1000));
    }

    void fileThatSaysItIsEmptyIsReadToItsEnd()
    {
        const auto status = LinuxFileReading().contents("/proc/self/status", 1'000'000);
        QVERIFY(status && status->startsWith("Name:"));
        QVERIFY(!LinuxFileReading().contents("/proc/self/status", 10));
    }

    void fileOfHolesLongerThanTheLimitIsNotRead()
    {
        TempTree tree;
        QFile file(tree.text("holes"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(qint64(1) << 40));
        QVERIFY(!LinuxFileReading().contents(tree.path("holes"), qsizetype{ 16 } * 1024 * 1024));
    }
};

QUILLBROOK_SUITE(TestLinuxFileFacts, NoApplication)
#include "tst_LinuxFileFacts.moc"
