#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDir>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const std::string &path)
{
    return LinuxFileReading().contents(path, 1 << 20).value_or("(none)");
}

unsigned modeOf(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

QStringList namesIn(const TempTree &tree)
{
    return QDir(tree.text()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class TestLinuxFileWriting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileAndItsFoldersAreMadeForTheUserAlone()
    {
        TempTree tree;
        const auto path = tree.path("share/Quillbrook/ledger.json");
        QVERIFY(LinuxFileWriting().replace(path, "content"));
        QCOMPARE(contentOf(path), "content");
        QCOMPARE(modeOf(path), 0600U);
        QCOMPARE(modeOf(tree.path("share/Quillbrook")), 0700U);
        QCOMPARE(modeOf(tree.path("share")), 0700U);
    }

    void foldersThatAreThereKeepTheirRights()
    {
        TempTree tree;
        tree.folder("Quillbrook");
        tree.permissions("Quillbrook", 0755);
        QVERIFY(LinuxFileWriting().replace(tree.path("Quillbrook/a"), "content"));
        QCOMPARE(modeOf(tree.path("Quillbrook")), 0755U);
    }

    void contentIsReplacedWhole_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("shorter") << QByteArray("x");
        QTest::newRow("longer") << QByteArray(3 << 20, 'y');
        QTest::newRow("with zero bytes") << QByteArray("a\0b", 3);
    }
    void contentIsReplacedWhole()
    {
        QFETCH(QByteArray, content);
        TempTree tree;
        tree.fileWith("a", "what was there before");
        tree.permissions("a", 0444);
        QVERIFY(LinuxFileWriting().replace(tree.path("a"), content));
        QCOMPARE(LinuxFileReading().contents(tree.path("a"), 4 << 20), content);
        QCOMPARE(modeOf(tree.path("a")), 0600U);
        QCOMPARE(namesIn(tree), QStringList{ u"a"_s });
    }

    void oddNames_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("not UTF-8") << QByteArray("a\xFF");
        QTest::newRow("line feed") << QByteArray("a\nb");
        QTest::newRow("folder of an odd name") << QByteArray("a\xFF\n/b");
    }
    void oddNames()
    {
        QFETCH(QByteArray, name);
        TempTree tree;
        QVERIFY(LinuxFileWriting().replace(tree.path(name.toStdString()), "content"));
        QCOMPARE(contentOf(tree.path(name.toStdString())), "content");
    }

    void linkInThePlaceOfTheFileGivesWay()
    {
        TempTree tree;
        tree.fileWith("somebody's", "untouched");
        tree.link("a", "somebody's");
        QVERIFY(LinuxFileWriting().replace(tree.path("a"), "content"));
        QCOMPARE(contentOf(tree.path("somebody's")), "untouched");
        QCOMPARE(contentOf(tree.path("a")), "content");
    }

    void whatAKilledSaveLeftIsTakenUp()
    {
        TempTree tree;
        tree.fileWith("a", "old");
        tree.fileWith("a.new", std::string(5000, 'h'));
        QVERIFY(LinuxFileWriting().replace(tree.path("a"), "content"));
        QCOMPARE(contentOf(tree.path("a")), "content");
        QCOMPARE(namesIn(tree), QStringList{ u"a"_s });
    }

    void leftoverWithoutRightsIsNoObstacle()
    {
        TempTree tree;
        tree.file("a.new", 10);
        tree.permissions("a.new", 0);
        QVERIFY(LinuxFileWriting().replace(tree.path("a"), "content"));
        QCOMPARE(contentOf(tree.path("a")), "content");
    }

    void whatElseHasTheNameOfALeftoverIsNotWrittenTo()
    {
        TempTree tree;
        tree.fileWith("somebody's", "untouched");
        tree.link("linked.new", "somebody's");
        tree.link("leading nowhere.new", "nowhere");
        tree.hardLink("named twice.new", "somebody's");
        tree.pipe("pipe.new");
        for (const auto *name : { "linked", "leading nowhere", "named twice", "pipe" }) {
            QVERIFY2(LinuxFileWriting().replace(tree.path(name), "content"), name);
            QCOMPARE(contentOf(tree.path(name)), "content");
        }
        QCOMPARE(contentOf(tree.path("somebody's")), "untouched");
        QVERIFY(!QFile::exists(tree.text("nowhere")));
    }

    void folderInTheWayIsAnError()
    {
        TempTree tree;
        tree.file("a/kept");
        tree.file("b.new/kept");
        QVERIFY(!LinuxFileWriting().replace(tree.path("a"), "content"));
        QVERIFY(!LinuxFileWriting().replace(tree.path("b"), "content"));
        QVERIFY(QFile::exists(tree.text("a/kept")));
        QVERIFY(QFile::exists(tree.text("b.new/kept")));
        QCOMPARE(namesIn(tree), QStringList({ u"a"_s, u"b.new"_s }));
    }

    void fileInThePlaceOfAFolderIsAnError()
    {
        TempTree tree;
        tree.fileWith("a", "untouched");
        const auto written = LinuxFileWriting().replace(tree.path("a/b"), "content");
        QVERIFY(!written);
        QCOMPARE(written.error(), u"It is not there any more."_s);
        QCOMPARE(contentOf(tree.path("a")), "untouched");
    }

    void folderWithoutRightsKeepsTheOldContent()
    {
        TempTree tree;
        tree.fileWith("folder/a", "old");
        tree.permissions("folder", 0555);
        const auto written = LinuxFileWriting().replace(tree.path("folder/a"), "content");
        QVERIFY(!written);
        QCOMPARE(written.error(), u"You do not have permission."_s);
        QCOMPARE(contentOf(tree.path("folder/a")), "old");
    }

    void whileAnotherCopyWritesTheFileIsBusy()
    {
        TempTree tree;
        tree.fileWith("a", "old");
        tree.file("a.new");
        {
            const FileDescriptor other(::open(tree.path("a.new").c_str(), O_RDONLY | O_CLOEXEC));
            QCOMPARE(::flock(other.number(), LOCK_EX), 0);
            QVERIFY(!LinuxFileWriting().replace(tree.path("a"), "content"));
            QCOMPARE(contentOf(tree.path("a")), "old");
            QVERIFY(QFile::exists(tree.text("a.new")));
        }
        QVERIFY(LinuxFileWriting().replace(tree.path("a"), "content"));
    }

    void foldersBehindALinkAreThere()
    {
        TempTree tree;
        tree.folder("elsewhere");
        tree.link("link", "elsewhere");
        tree.link("dangling", "nowhere");
        QVERIFY(LinuxFileWriting().replace(tree.path("link/a"), "content"));
        QVERIFY(LinuxFileWriting().replace(tree.path("link/b/a"), "content"));
        QVERIFY(!LinuxFileWriting().replace(tree.path("dangling/a"), "content"));
        QCOMPARE(contentOf(tree.path("elsewhere/b/a")), "content");
        QVERIFY(!QFile::exists(tree.text("nowhere")));
    }
};

QUILLBROOK_SUITE(TestLinuxFileWriting, NoApplication, giveUpRoot)
#include "tst_LinuxFileWriting.moc"
