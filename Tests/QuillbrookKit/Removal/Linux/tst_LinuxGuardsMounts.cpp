// The guards where something is mounted, with mounts that this program alone sees. Where it may not have
// mounts of its own, its tests are skipped with the reason.

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Support/FakeHomeFolder.h"
#include "Support/PrivateMounts.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QCoreApplication>
#include <QTest>

#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;
using PathRemoval::refusal;

namespace {

QString whyNotPermitted;

const auto drive = u"That is an entire drive, not something on it."_s;

HostGuards guardsFor(const std::string &home)
{
    FakeHomeFolder homeFolder;
    homeFolder.home = QString::fromStdString(home);
    homeFolder.realHome = homeFolder.home;
    return LinuxGuards::guards(LinuxGuards::places(homeFolder, LinuxFileReading()));
}

} // namespace

class TestLinuxGuardsMounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void whatIsMountedIsADrive()
    {
        const TempTree tree;
        tree.folder("home/usb stick/x");
        tree.folder("home/usb stick2");
        tree.link("home/way", ".");
        const auto guards = guardsFor(tree.path("home"));
        const auto at = [&](const std::string &name) {
            return refusal(tree.path(name), tree.path("home"), &guards).value_or(u"(let)"_s);
        };
        QCOMPARE(at("home/usb stick"), u"(let)"_s);
        {
            const Mounted mounted("none", tree.path("home/usb stick"), "tmpfs");
            QCOMPARE(mounted.failure(), QString());
            QCOMPARE(at("home/usb stick"), drive);
            QCOMPARE(at("home/way/usb stick/"), drive);
            QCOMPARE(at("home/usb stick/x"), u"(let)"_s);
            QCOMPARE(at("home/usb stick2"), u"(let)"_s);
        }
        QCOMPARE(at("home/usb stick"), u"(let)"_s);
    }

    void homeMountedTwiceIsKeptByEitherPath()
    {
        const TempTree tree;
        tree.file("homes/anna/.ssh/id");
        tree.file("homes/anna/x");
        tree.folder("homes/anna/Music");
        tree.folder("again");
        tree.link("way", "again/anna");
        const Mounted mounted(tree.path("homes"), tree.path("again"), "", MS_BIND);
        QCOMPARE(mounted.failure(), QString());
        const auto home = tree.path("homes/anna");
        const auto guards = guardsFor(home);
        for (const auto *name :
            { "again/anna", "again/anna/.ssh/id", "again/anna/Music", "way/Music", "way/.ssh" })
            QVERIFY2(refusal(tree.path(name), home, &guards), name);
        for (const auto *name : { "again/anna/x", "again/anna/Music/a", "way/x", "way" })
            QVERIFY2(!refusal(tree.path(name), home, &guards), name);
    }
};

QUILLBROOK_SUITE(TestLinuxGuardsMounts, QCoreApplication, [] { whyNotPermitted = PrivateMounts::enter(); })
#include "tst_LinuxGuardsMounts.moc"
