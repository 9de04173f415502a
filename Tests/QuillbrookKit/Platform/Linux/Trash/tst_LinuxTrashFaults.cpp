// Every system call of the Trash and of deleting for good fails once, with each of several errors. Whatever
// fails, nothing is lost and nothing is left half done.

#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>

#include <sys/stat.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// A bound, not an expectation: the loops below end with the first run in which nothing failed.
constexpr int mostCalls = 500;

using Contents = std::map<std::string, std::string>;

std::string message(const FailingFileCalls &calls, int error)
{
    return "call " + std::to_string(calls.failAt) + ", " + calls.failed + ", errno " + std::to_string(error);
}

void makeThing(const TempTree &tree)
{
    tree.fileWith("folder/a", "a");
    tree.fileWith("folder/deep/b", "b");
    tree.link("folder/link", "a");
    tree.permissions("folder", 0555);
}

bool isReadOnly(const std::string &path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && (status.st_mode & 0777U) == 0555U;
}

} // namespace

class TestLinuxTrashFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moving_data() { addErrors(); }

    // Either it lies where it lay and no note tells of it, or it lies in the trash with its note.
    void moving()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            makeThing(f.home);
            const auto before = f.everything(f.home.path("folder"));
            f.calls.failAt = call;
            f.calls.error = error;
            const auto moved = f.trash.move(f.home.path("folder"));
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            const auto now = moved ? *moved : f.home.path("folder");
            QVERIFY2(f.everything(now) == before, told.c_str());
            QVERIFY2(f.isThere(f.home.path("folder")) != moved.has_value(), told.c_str());
            const auto things = f.names(f.places.homeTrash + "/files");
            auto notes = things;
            for (auto &name : notes)
                name += ".trashinfo";
            // The one note that may stay is the one that could not be taken back.
            const bool couldNotTakeBack = f.calls.failed.starts_with("unlinkat");
            QVERIFY2(couldNotTakeBack || f.names(f.places.homeTrash + "/info") == notes, told.c_str());
            QCOMPARE(things.size(), size_t(moved ? 1 : 0));
            const bool couldNotGiveBack = f.calls.failed.starts_with("chmod") && moved;
            QVERIFY2(couldNotGiveBack || isReadOnly(now), told.c_str());
            QVERIFY2(moved || moved.error().endsWith(u'.'), told.c_str());
        }
    }

    void movingWhileTheNameIsTaken_data() { addErrors(); }

    void movingWhileTheNameIsTaken()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            f.home.fileWith("a", "new");
            f.home.fileWith(".local/share/Trash/files/a", "old");
            f.home.fileWith(".local/share/Trash/info/a.2.trashinfo", "taken");
            f.calls.failAt = call;
            f.calls.error = error;
            const auto moved = f.trash.move(f.home.path("a"));
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            QCOMPARE(f.content(f.files("a")), std::string("old"));
            QCOMPARE(f.content(f.note("a.2")), std::string("taken"));
            QVERIFY2(f.content(moved ? *moved : f.home.path("a")) == "new", told.c_str());
            QVERIFY2(f.isThere(f.home.path("a")) != moved.has_value(), told.c_str());
        }
    }

    void restoring_data() { addErrors(); }

    void restoring()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            makeThing(f.home);
            const auto before = f.everything(f.home.path("folder"));
            const auto moved = f.trash.move(f.home.path("folder"));
            QVERIFY(moved);
            const auto goal = f.home.path("new/place/folder");
            f.calls.calls = 0;
            f.calls.failAt = call;
            f.calls.error = error;
            const auto restored = f.trash.restore(*moved, goal);
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            QVERIFY2(f.everything(restored ? goal : *moved) == before, told.c_str());
            QVERIFY2(f.isThere(goal) == restored.has_value(), told.c_str());
            QVERIFY2(
                f.isThere(f.note("folder")) != restored.has_value() || f.calls.failed.starts_with("unlinkat"),
                told.c_str());
            QVERIFY2(restored || !f.isThere(f.home.path("new")), told.c_str());
        }
    }

    void erasing_data() { addErrors(); }

    // What can't be deleted is whole and in the trash, or out of it and among the leftovers.
    void erasing()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            makeThing(f.home);
            f.home.fileWith("other", "kept");
            const auto before = f.everything(f.home.path("folder"));
            const auto moved = f.trash.move(f.home.path("folder"));
            const auto other = f.trash.move(f.home.path("other"));
            QVERIFY(moved && other);
            f.calls.calls = 0;
            f.calls.failAt = call;
            f.calls.error = error;
            const auto erased = f.trash.erase(*moved);
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            QCOMPARE(f.content(*other), std::string("kept"));
            QVERIFY(f.isThere(f.note("other")));
            const bool isLeft = f.isThere(*moved);
            QVERIFY2(!erased || !isLeft, told.c_str());
            QVERIFY2(!isLeft || f.everything(*moved) == before, told.c_str());
            QVERIFY2(f.isThere(f.note("folder")) == isLeft || f.calls.failed.starts_with("unlinkat")
                    || f.calls.failed.starts_with("renameat2"),
                told.c_str());
            f.calls.failAt = 0;
            for (const auto &item : f.trash.items(f.places.homeTrash))
                QVERIFY2(f.trash.erase(item.path), told.c_str());
            QVERIFY2(f.names(f.places.homeTrash + "/files").empty(), told.c_str());
            QVERIFY2(f.names(f.places.homeTrash + "/expunged").empty(), told.c_str());
        }
    }

    void deletingForGood_data() { addErrors(); }

    // Nothing beside it goes, success means that it is gone, and a second try takes the rest.
    void deletingForGood()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            makeThing(f.home);
            f.home.fileWith("elsewhere/a", "kept");
            f.home.permissions("folder", 0755);
            f.home.link("folder/out", "../elsewhere");
            f.home.permissions("folder", 0555);
            f.calls.failAt = call;
            f.calls.error = error;
            LinuxFileRemoval removal(f.calls);
            const auto done = removal.remove(f.home.path("folder"));
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            QCOMPARE(f.content(f.home.path("elsewhere/a")), std::string("kept"));
            QVERIFY2(!done || !f.isThere(f.home.path("folder")) || error == ENOENT, told.c_str());
            f.calls.failAt = 0;
            std::ignore = removal.remove(f.home.path("folder"));
            QVERIFY2(!f.isThere(f.home.path("folder")), told.c_str());
        }
    }

    void twoFailuresInARow_data() { addErrors(); }

    // The way back fails too: what was to be moved is somewhere whole, and nowhere twice.
    void twoFailuresInARow()
    {
        QFETCH(int, error);
        bool hasFailed = true;
        for (int call = 1; hasFailed; ++call) {
            QVERIFY(call < mostCalls);
            TrashFixture f;
            makeThing(f.home);
            const auto before = f.everything(f.home.path("folder"));
            f.calls.failAt = call;
            f.calls.failures = 2;
            f.calls.error = error;
            const auto moved = f.trash.move(f.home.path("folder"));
            hasFailed = f.calls.calls >= call;
            const auto told = message(f.calls, error);
            QVERIFY2(f.everything(moved ? *moved : f.home.path("folder")) == before, told.c_str());
            QVERIFY2(f.isThere(f.home.path("folder")) != moved.has_value(), told.c_str());
        }
    }

    void systemWithoutNoReplaceIsAskedFirst()
    {
        TrashFixture f;
        f.calls.before = [](std::string_view call, const char *) { return call == "renameat2" ? EINVAL : 0; };
        f.home.fileWith(".local/share/Trash/files/a", "old");
        f.home.fileWith("a", "new");
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(moved);
        QCOMPARE(*moved, f.files("a.2"));
        QCOMPARE(f.content(f.files("a")), std::string("old"));
        f.home.fileWith("a", "newer");
        QVERIFY(!f.trash.restore(*moved, f.home.path("a")));
        QCOMPARE(f.content(f.home.path("a")), std::string("newer"));
    }

    void shortWritesAreGoneOnWith()
    {
        class ShortWrites final : public FileCalls
        {
            [[nodiscard]] ssize_t write(int file, const void *bytes, size_t count) const override
            {
                return FileCalls::write(file, bytes, std::min<size_t>(count, 3));
            }
        };
        TrashFixture f;
        f.home.file("a");
        const ShortWrites calls;
        LinuxTrash trash(f.places, f.reserve, f.clock, calls);
        QVERIFY(trash.move(f.home.path("a")));
        QCOMPARE(f.content(f.note("a")),
            "[Trash Info]\nPath=" + f.home.path("a") + "\nDeletionDate=2024-06-15T12:00:00\n");
    }

    void fullDiskIsHelpedByTheReserve_data()
    {
        QTest::addColumn<QByteArray>("full");
        for (const auto *call : { "mkdirat", "openat", "write", "close", "renameat2" })
            QTest::newRow(call) << QByteArray(call);
    }

    void fullDiskIsHelpedByTheReserve()
    {
        QFETCH(QByteArray, full);
        TrashFixture f;
        f.home.fileWith("a", "kept");
        f.calls.before = [&](std::string_view call, const char *name) {
            const bool writes = call != "openat" || std::string_view(name).ends_with(".trashinfo");
            return f.reserve.isKept && call == full.toStdString() && writes ? ENOSPC : 0;
        };
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error()));
        QCOMPARE(f.content(*moved), std::string("kept"));
        QCOMPARE(f.names(f.places.homeTrash + "/info"), std::vector<std::string>{ "a.trashinfo" });
        QCOMPARE(f.reserve.released, 1);
        QCOMPARE(f.reserve.replenished, 1);
    }

    void fullDiskWithoutAReserveSaysSo()
    {
        TrashFixture f;
        f.home.fileWith("a", "kept");
        f.reserve.isKept = false;
        f.calls.before = [](std::string_view call, const char *) { return call == "write" ? ENOSPC : 0; };
        const auto moved = f.trash.move(f.home.path("a"));
        QVERIFY(!moved);
        QCOMPARE(moved.error(), u"There is no space left on the disk."_s);
        QCOMPARE(f.content(f.home.path("a")), std::string("kept"));
        QVERIFY(f.names(f.places.homeTrash + "/info").empty());
        QVERIFY(f.names(f.places.homeTrash + "/files").empty());
    }

private:
    static void addErrors()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("disk error") << EIO;
        QTest::newRow("no right") << EACCES;
        QTest::newRow("full") << ENOSPC;
        QTest::newRow("gone") << ENOENT;
        QTest::newRow("already there") << EEXIST;
        QTest::newRow("not known") << EINVAL;
        QTest::newRow("another volume") << EXDEV;
        QTest::newRow("interrupted") << EINTR;
        QTest::newRow("too many files") << EMFILE;
        QTest::newRow("name too long") << ENAMETOOLONG;
    }
};

QUILLBROOK_SUITE(TestLinuxTrashFaults, QCoreApplication, giveUpRoot)
#include "tst_LinuxTrashFaults.moc"
