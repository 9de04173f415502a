// What an administrator has marked so that the system lets nobody change it, on a disk that this program
// alone sees. Where it may set no marks, its tests are skipped with the reason.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <sys/ioctl.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

QString whyNotPermitted;

// 0, or the error number.
int mark(const std::string &path, int flags)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file.isOpen() && ::ioctl(file.number(), FS_IOC_SETFLAGS, &flags) == 0 ? 0 : errno;
}

const auto notPermitted = u"The system does not permit it."_s;

} // namespace

class TestUnchangeableFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
        const TempTree tree;
        const Mounted disk("none", tree.path(), "tmpfs");
        QCOMPARE(disk.failure(), QString());
        tree.file("marked");
        if (const int error = mark(tree.path("marked"), FS_IMMUTABLE_FL | FS_APPEND_FL))
            QSKIP(std::strerror(error));
    }

    void init()
    {
        m_tree = std::make_unique<TempTree>();
        m_tree->folder("disk");
        m_disk = std::make_unique<Mounted>("none", m_tree->path("disk"), "tmpfs");
        QCOMPARE(m_disk->failure(), QString());
        m_f = std::make_unique<TrashFixture>(m_tree->path("disk"));
        m_f->home.fileWith("folder/kept", "kept");
        m_f->home.file("folder/other");
    }
    void cleanup()
    {
        // First, since what is marked can't be taken off it.
        m_disk.reset();
        m_f.reset();
        m_tree.reset();
    }

    void theyStayWhereTheyAre_data() { addMarks(); }
    void theyStayWhereTheyAre()
    {
        markKept("folder/kept");
        const auto moved = m_f->trash.move(m_f->home.path("folder/kept"));
        QVERIFY(!moved);
        QCOMPARE(moved.error(), notPermitted);
        QCOMPARE(m_f->content(m_f->home.path("folder/kept")), std::string("kept"));
        QVERIFY(m_f->names(m_f->places.homeTrash + "/files").empty());
        QVERIFY(m_f->names(m_f->places.homeTrash + "/info").empty());
        LinuxFileRemoval removal;
        const auto removed = removal.remove(m_f->home.path("folder"));
        QVERIFY(!removed);
        QCOMPARE(removed.error(), u"\"kept\" could not be deleted. "_s + notPermitted);
        QCOMPARE(m_f->names(m_f->home.path("folder")), std::vector<std::string>{ "kept" });
    }

    void theyGoToTheTrashAndBackWithTheirFolder_data() { addMarks(); }
    void theyGoToTheTrashAndBackWithTheirFolder()
    {
        markKept("folder/kept");
        const auto moved = m_f->trash.move(m_f->home.path("folder"));
        QVERIFY(moved);
        QVERIFY(m_f->trash.restore(*moved, m_f->home.path("folder")));
        QCOMPARE(m_f->names(m_f->home.path("folder")), (std::vector<std::string>{ "kept", "other" }));
    }

    void theyAreLeftOverUntilTheyCanGo_data() { addMarks(); }
    void theyAreLeftOverUntilTheyCanGo()
    {
        markKept("folder/kept");
        const auto moved = m_f->trash.move(m_f->home.path("folder"));
        QVERIFY(moved);
        const auto erased = m_f->trash.erase(*moved);
        QVERIFY(!erased);
        QCOMPARE(erased.error(), u"\"kept\" could not be deleted. "_s + notPermitted);
        const auto left = m_f->trash.items(m_f->places.homeTrash);
        QCOMPARE(left.size(), size_t(1));
        QCOMPARE(m_f->content(left.front().path + "/kept"), std::string("kept"));
        QCOMPARE(mark(left.front().path + "/kept", 0), 0);
        QVERIFY(m_f->trash.erase(left.front().path));
        QVERIFY(m_f->trash.items(m_f->places.homeTrash).empty());
    }

    // As a folder of which nothing may be taken.
    void foldersKeepWhatIsInThem_data() { addMarks(); }
    void foldersKeepWhatIsInThem()
    {
        markKept("folder");
        for (const auto *name : { "folder", "folder/kept" }) {
            const auto moved = m_f->trash.move(m_f->home.path(name));
            QVERIFY(!moved);
            QCOMPARE(moved.error(), notPermitted);
        }
        QVERIFY(m_f->names(m_f->places.homeTrash + "/info").empty());
        LinuxFileRemoval removal;
        QVERIFY(!removal.remove(m_f->home.path("folder")));
        QCOMPARE(m_f->names(m_f->home.path("folder")), (std::vector<std::string>{ "kept", "other" }));
    }

private:
    static void addMarks()
    {
        QTest::addColumn<int>("flags");
        QTest::newRow("immutable") << int{ FS_IMMUTABLE_FL };
        QTest::newRow("append only") << int{ FS_APPEND_FL };
    }

    void markKept(const std::string &name) const
    {
        QFETCH(int, flags);
        QCOMPARE(mark(m_f->home.path(name), flags), 0);
    }

    std::unique_ptr<TempTree> m_tree;
    std::unique_ptr<Mounted> m_disk;
    std::unique_ptr<TrashFixture> m_f;
};

QUILLBROOK_SUITE(TestUnchangeableFiles, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_UnchangeableFiles.moc"
