// The library on real files: consent, rights, the sandbox's folder, and a range that goes to the Trash.

#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Photos/LinuxPhotoLibrary.h"
#include "Removal/HostGuards.h"
#include "Support/FakeClock.h"
#include "Support/FakeFolders.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeProcessRunner.h"
#include "Support/FakeUserDefaults.h"
#include "Support/MadePictures.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"

#include <QTest>

#include <filesystem>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

class Person final : public PhotoQuestions
{
public:
    bool isWilling = true;
    QStringList folders;

    QFuture<bool> mayRead(const QStringList &asked) override
    {
        folders = asked;
        return said();
    }
    QFuture<bool> mayDelete(qsizetype) override { return said(); }

private:
    [[nodiscard]] QFuture<bool> said() const
    {
        QPromise<bool> promise;
        promise.start();
        promise.addResult(isWilling);
        promise.finish();
        return promise.future();
    }
};

struct Machine
{
    TempTree tree;
    FakeClock clock;
    LinuxDisk disk{ tree.path("data/Quillbrook"),
        { .homeTrash = tree.path("data/Trash"), .user = ::getuid() }, clock };
    HostGuards guards;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    FakeProcessRunner processes;
    FakeFolderPicker picker;
    FakeFolderGrants grants;
    const DesktopSession session{ .configFolder = tree.path("config") };
    Person person;

    Machine()
    {
        home.home = home.realHome = tree.text("home");
        tree.folder("home/Pictures");
    }
    [[nodiscard]] std::unique_ptr<LinuxPhotoLibrary> library()
    {
        return std::make_unique<LinuxPhotoLibrary>(LinuxPhotoLibrary::Services{ .removal
            = LinuxPhotoLibrary::removalOn(disk, clock, guards, tree.path("home"), tree.path("data")),
            .defaults = defaults,
            .home = home,
            .processes = processes,
            .picker = picker,
            .grants = grants,
            .session = session });
    }
    [[nodiscard]] PhotoAccess asked(PhotoLibrary &library)
    {
        auto answer = library.requestAccess(person);
        answer.waitForFinished();
        return answer.result();
    }
};

const auto query = PhotoQuery::ofRange(noon(2019, 1, 1), noon(2020, 1, 1), true);

} // namespace

class TestLinuxPhotoLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void consentIsAskedOnceAndKept()
    {
        Machine machine;
        auto library = machine.library();
        QCOMPARE(library->status(), PhotoAccess::notAsked);
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        QCOMPARE(machine.person.folders,
            (QStringList{ machine.tree.text("home/Pictures"), machine.tree.text("home/Videos") }));
        machine.person.folders.clear();
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        QVERIFY(machine.person.folders.isEmpty());
        QCOMPARE(machine.library()->status(), PhotoAccess::granted);
    }

    void refusalLastsForThisRun()
    {
        Machine machine;
        machine.person.isWilling = false;
        auto library = machine.library();
        QCOMPARE(machine.asked(*library), PhotoAccess::denied);
        QCOMPARE(library->status(), PhotoAccess::denied);
        QCOMPARE(machine.library()->status(), PhotoAccess::notAsked);
    }

    void rightsDecideWhatConsentIsWorth()
    {
        Machine machine;
        auto library = machine.library();
        machine.tree.permissions("home/Pictures", 0500);
        QCOMPARE(machine.asked(*library), PhotoAccess::limited);
        std::filesystem::remove(machine.tree.path("home/Pictures"));
        QCOMPARE(library->status(), PhotoAccess::denied);
    }

    void sandboxIsHandedTheFolder()
    {
        Machine machine;
        machine.home.home = machine.tree.text("sandbox");
        machine.tree.folder("portal/Pictures");
        machine.picker.answer = machine.tree.path("portal/Pictures");
        auto library = machine.library();
        QCOMPARE(library->status(), PhotoAccess::notAsked);
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        QVERIFY(machine.person.folders.isEmpty());
        makePicture(machine.tree, "portal/Pictures/a.jpg", noon(2019, 6, 1));
        makePicture(machine.tree, "home/Pictures/b.jpg", noon(2019, 6, 1));
        PhotoWork work;
        QCOMPARE(library->query(query, work)->count(), qsizetype(1));
        QCOMPARE(machine.library()->status(), PhotoAccess::granted);
        machine.grants.canResolve = false;
        QCOMPARE(machine.library()->status(), PhotoAccess::notAsked);
    }

    // As in the folders of the system, which that of the document portal is below.
    void whereNothingMayGoItCanBeCounted()
    {
        Machine machine;
        auto library = machine.library();
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        machine.guards.guards.push_back({ .names =
                                              [&](const GuardedPath &path) {
                                                  return path.isWithin(machine.tree.path("home/Pictures"))
                                                      ? std::optional<std::string>("")
                                                      : std::nullopt;
                                              },
            .sentence = u"Kept."_s });
        QCOMPARE(library->status(), PhotoAccess::limited);
        makePicture(machine.tree, "home/Pictures/a.jpg", noon(2019, 6, 1));
        makePicture(machine.tree, "home/Pictures/trip/b.jpg", noon(2019, 6, 1));
        PhotoWork search;
        const auto assets = library->query(query, search);
        QCOMPARE(assets->count(), qsizetype(2));
        PhotoWork work;
        QVERIFY(!library->deleteAssets(*assets, work).succeeded);
        QVERIFY(std::filesystem::exists(machine.tree.path("home/Pictures/a.jpg")));
        QVERIFY(std::filesystem::exists(machine.tree.path("home/Pictures/trip/b.jpg")));
    }

    void cancelledPickerIsARefusal()
    {
        Machine machine;
        machine.home.home = machine.tree.text("sandbox");
        auto library = machine.library();
        QCOMPARE(machine.asked(*library), PhotoAccess::denied);
        QCOMPARE(machine.picker.requests.size(), qsizetype(1));
        QVERIFY(!machine.defaults.data(u"Quillbrook.photosBookmark"_s));
    }

    void rangeGoesToTheTrashAndComesBack()
    {
        Machine machine;
        auto library = machine.library();
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        for (const char *name : { "Pictures/a.jpg", "Pictures/a.mov", "Videos/b.mp4", "Videos/c.jpg" })
            makePicture(machine.tree, std::string("home/") + name, noon(2019, 6, 1));
        makePicture(machine.tree, "home/Pictures/later.jpg", noon(2021, 6, 1));
        PhotoWork search;
        const auto assets = library->query(query, search);
        QCOMPARE(assets->count(), qsizetype(2));

        PhotoWork work;
        QVERIFY(library->deleteAssets(*assets, work).succeeded);
        QCOMPARE(library->held().count, qsizetype(3));
        QVERIFY(library->held().place->starts_with(machine.tree.path("data/Trash/files/")));
        QVERIFY(std::filesystem::exists(machine.tree.path("home/Pictures/later.jpg")));
        QVERIFY(std::filesystem::exists(machine.tree.path("home/Videos/c.jpg")));
        PhotoWork back;
        QCOMPARE(machine.library()->putBack(back), PhotoReturn{ .returned = 3 });
        PhotoWork again;
        QCOMPARE(library->query(query, again)->count(), qsizetype(2));
    }

    void stoppedQueryGivesNothing()
    {
        Machine machine;
        auto library = machine.library();
        QCOMPARE(machine.asked(*library), PhotoAccess::granted);
        PhotoWork work;
        work.isStopped = true;
        QVERIFY(!library->query(query, work));
    }
};

QUILLBROOK_SUITE(TestLinuxPhotoLibrary, QCoreApplication, giveUpRoot)
#include "tst_LinuxPhotoLibrary.moc"
