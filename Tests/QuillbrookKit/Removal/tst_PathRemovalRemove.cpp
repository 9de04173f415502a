// Removing what a person picked: guards first, then the Trash or nothing, on real files as an ordinary user.

#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Removal/RemovalServices.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TrashFixture.h"

#include <QCoreApplication>
#include <QTest>
#include <QUuid>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using PathRemoval::Item;
using PathRemoval::Manner;
using PathRemoval::Removal;

namespace {

struct RemovalFixture : TrashFixture
{
    LinuxFileRemoval removal{ calls };
    LinuxFileFacts facts;
    RemovalServices services{ .trash = trash, .removal = removal, .files = facts, .clock = clock };
    Manner toTrash{ .home = home.path() };
    Manner permanent{ .permanent = true, .home = home.path() };

    [[nodiscard]] Item item(const std::string &name, const QString &label = u"Thing"_s) const
    {
        return { .path = home.path(name), .bytes = 42, .label = label };
    }
};

} // namespace

class TestPathRemovalRemove : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesToTheTrashWithARowForTheLedger()
    {
        RemovalFixture f;
        f.home.fileWith("folder/odd\xff", "content");
        const auto removed = PathRemoval::remove(f.services, f.item("folder/odd\xff", u"Odd"_s), f.toTrash);
        QVERIFY(removed.succeeded());
        QVERIFY(removed.trashed);
        const auto &id = removed.trashed->id;
        QCOMPARE(id, QUuid::fromString(id).toString(QUuid::WithoutBraces).toUpper());
        const Removal expected{ .path = f.home.path("folder/odd\xff"),
            .bytes = 42,
            .trashed = TrashedItem{ .id = id,
                .label = u"Odd"_s,
                .originalPath = f.home.path("folder/odd\xff"),
                .trashPath = f.files("odd\xff"),
                .bytes = 42,
                .movedAt = f.clock.moment,
                .identity = removed.trashed->identity } };
        QVERIFY(removed == expected);
        QCOMPARE(f.content(f.files("odd\xff")), std::string("content"));
    }

    void goesForGoodWithoutARow()
    {
        RemovalFixture f;
        f.home.file("folder/a");
        const auto removed = PathRemoval::remove(f.services, f.item("folder"), f.permanent);
        QVERIFY(removed == (Removal{ .path = f.home.path("folder"), .bytes = 42 }));
        QVERIFY(f.names(f.home.path()).empty());
    }

    void rowHasThePathAsItWasGiven()
    {
        RemovalFixture f;
        f.home.file("folder/a");
        const auto removed = PathRemoval::remove(f.services, f.item("folder//./a/"), f.toTrash);
        QVERIFY(removed.succeeded());
        QCOMPARE(removed.path, f.home.path("folder//./a/"));
        QCOMPARE(removed.trashed->originalPath, f.home.path("folder//./a/"));
    }

    void refusedPathIsNotTouched_data()
    {
        QTest::addColumn<bool>("isPermanent");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char *name, const QString &sentence) {
            QTest::addRow("%s to the Trash", name) << false << QByteArray(name) << sentence;
            QTest::addRow("%s for good", name) << true << QByteArray(name) << sentence;
        };
        row(".", u"That is your home folder."_s);
        row("Music",
            u"Music is one of your Mac's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s);
        row("x.band/a",
            u"That is inside x.band, which looks like a folder but is one single file. Taking a piece out of it breaks the whole thing."_s);
        row("Quillbrook.app", u"That is Quillbrook itself."_s);
    }

    void refusedPathIsNotTouched()
    {
        QFETCH(bool, isPermanent);
        QFETCH(QByteArray, name);
        QFETCH(QString, sentence);
        RemovalFixture f;
        for (const auto *path : { "Music/a", "x.band/a", "Quillbrook.app" })
            f.home.file(path);
        const auto before = f.everything(f.home.path());
        const auto item = f.item(name.toStdString());
        const auto removed = PathRemoval::remove(f.services, item, isPermanent ? f.permanent : f.toTrash);
        QVERIFY(removed == (Removal{ .path = item.path, .error = sentence }));
        QVERIFY(f.everything(f.home.path()) == before);
        QCOMPARE(f.calls.calls, 0);
    }

    void hostsGuardsAreAskedToo()
    {
        RemovalFixture f;
        f.home.fileWith(".ssh/id", "kept");
        f.home.link("way", ".ssh");
        const auto guards = LinuxGuards::guards({ .homes = { f.home.path() }, .trashes = f.places });
        f.permanent.host = &guards;
        for (const auto *name : { ".ssh/id", "way/id", ".ssh" })
            QVERIFY(PathRemoval::remove(f.services, f.item(name), f.permanent)
                        .error->startsWith(u"That is where your keys and passwords are kept."_s));
        QCOMPARE(f.content(f.home.path(".ssh/id")), std::string("kept"));
        QVERIFY(PathRemoval::remove(f.services, f.item("way"), f.permanent).succeeded());
        QCOMPARE(f.content(f.home.path(".ssh/id")), std::string("kept"));
    }

    void whatIsGoneIsSaidSo_data()
    {
        QTest::addColumn<bool>("isPermanent");
        QTest::newRow("to the Trash") << false;
        QTest::newRow("for good") << true;
    }

    void whatIsGoneIsSaidSo()
    {
        QFETCH(bool, isPermanent);
        RemovalFixture f;
        const auto removed = PathRemoval::remove(
            f.services, f.item("gone", u"Old Things"_s), isPermanent ? f.permanent : f.toTrash);
        QVERIFY(removed
            == (Removal{ .path = f.home.path("gone"), .error = u"Old Things is not there any more."_s }));
        QVERIFY(f.names(f.home.path()).empty());
    }

    void linkIsRemovedAsALink_data()
    {
        QTest::addColumn<bool>("isPermanent");
        QTest::addColumn<QByteArray>("target");
        for (const bool isPermanent : { false, true })
            for (const auto *target : { "elsewhere", "nowhere", "/etc" })
                QTest::addRow("%s, %s", target, isPermanent ? "for good" : "to the Trash")
                    << isPermanent << QByteArray(target);
    }

    void linkIsRemovedAsALink()
    {
        QFETCH(bool, isPermanent);
        QFETCH(QByteArray, target);
        RemovalFixture f;
        f.home.fileWith("elsewhere/a", "kept");
        f.home.link("link", target.toStdString());
        const auto removed
            = PathRemoval::remove(f.services, f.item("link"), isPermanent ? f.permanent : f.toTrash);
        QVERIFY2(removed.succeeded(), qPrintable(removed.error.value_or(QString())));
        QVERIFY(!f.isThere(f.home.path("link")));
        QCOMPARE(f.content(f.home.path("elsewhere/a")), std::string("kept"));
    }

    void failedMoveNeverDeletes()
    {
        RemovalFixture f;
        f.home.fileWith("a", "kept");
        f.calls.before = [](std::string_view call, const char *) { return call == "renameat2" ? EIO : 0; };
        const auto removed = PathRemoval::remove(f.services, f.item("a", u"A"_s), f.toTrash);
        QVERIFY(removed
            == (Removal{
                .path = f.home.path("a"), .error = u"Could not remove A: The disk reports an error."_s }));
        QCOMPARE(f.content(f.home.path("a")), std::string("kept"));
    }

    void failedDeletionSaysWhatStays()
    {
        RemovalFixture f;
        f.home.file("folder/stays");
        f.home.file("folder/goes");
        f.calls.before = [](std::string_view call, const char *name) {
            return call == "unlinkat" && std::string_view(name) == "stays" ? EPERM : 0;
        };
        const auto removed = PathRemoval::remove(f.services, f.item("folder", u"Folder"_s), f.permanent);
        QVERIFY(removed
            == (Removal{ .path = f.home.path("folder"),
                .error
                = u"Could not remove Folder: \"stays\" could not be deleted. The system does not permit it."_s }));
        QCOMPARE(f.names(f.home.path("folder")), std::vector<std::string>{ "stays" });
    }

    void labelsAreTakenAsTheyAre()
    {
        RemovalFixture f;
        const auto removed = PathRemoval::remove(f.services, f.item("gone", u"%1 %2 {name}"_s), f.toTrash);
        QCOMPARE(*removed.error, u"%1 %2 {name} is not there any more."_s);
        f.home.file("a");
        f.calls.before = [](std::string_view call, const char *) { return call == "renameat2" ? EIO : 0; };
        const auto failed = PathRemoval::remove(f.services, f.item("a", u"%2"_s), f.toTrash);
        QCOMPARE(*failed.error, u"Could not remove %2: The disk reports an error."_s);
    }

    // "~" stands for the home folder in what the guards judge, and is a name like any other to the system.
    void relativePathIsNeverActedOn()
    {
        RemovalFixture f;
        f.home.fileWith("~/a", "kept");
        f.home.fileWith("a", "kept");
        std::filesystem::current_path(f.home.path());
        for (const auto *path : { "~/a", "a", "./a" })
            for (const auto &manner : { f.toTrash, f.permanent })
                QVERIFY2(
                    !PathRemoval::remove(f.services, { .path = path, .label = u"A"_s }, manner).succeeded(),
                    path);
        // Not the one before: it may be closed to the user that the suites run as.
        std::filesystem::current_path("/");
        QCOMPARE(f.content(f.home.path("~/a")), std::string("kept"));
        QCOMPARE(f.content(f.home.path("a")), std::string("kept"));
    }

    void eachHasAnIdOfItsOwn()
    {
        RemovalFixture f;
        f.home.file("a");
        f.home.file("b");
        const auto removed = PathRemoval::removeAll(f.services, { f.item("a"), f.item("b") }, f.toTrash);
        QVERIFY(removed[0].trashed->id != removed[1].trashed->id);
        auto marked = *removed[0].trashed;
        marked.byRule = true;
        QVERIFY(removed[0].trashed->markedByRule() == marked);
    }

    void allInOrderAndOneFailureStopsNone()
    {
        RemovalFixture f;
        for (const auto *name : { "a", "b", "Music/x" })
            f.home.file(name);
        const auto removed = PathRemoval::removeAll(
            f.services, { f.item("a"), f.item("Music"), f.item("gone"), f.item("b") }, f.toTrash);
        std::vector<std::string> paths;
        std::vector<bool> outcomes;
        for (const auto &each : removed) {
            paths.push_back(each.path);
            outcomes.push_back(each.succeeded());
        }
        QCOMPARE(paths,
            (std::vector<std::string>{
                f.home.path("a"), f.home.path("Music"), f.home.path("gone"), f.home.path("b") }));
        QCOMPARE(outcomes, (std::vector<bool>{ true, false, false, true }));
        QCOMPARE(f.names(f.places.homeTrash + "/files"), (std::vector<std::string>{ "a", "b" }));
    }

    void noneOfNone()
    {
        const RemovalFixture f;
        QVERIFY(PathRemoval::removeAll(f.services, {}, f.toTrash).empty());
    }
};

QUILLBROOK_SUITE(TestPathRemovalRemove, QCoreApplication, giveUpRoot)
#include "tst_PathRemovalRemove.moc"
