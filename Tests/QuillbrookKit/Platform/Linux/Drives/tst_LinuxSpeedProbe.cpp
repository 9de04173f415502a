// The speed of real volumes, and that nothing stays of a measurement.

#include "Support/Suite.h"
#include "Support/TwoVolumes.h"

#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 sample = qint64{ 2 } * 1'048'576;

void age(const std::string &path, std::time_t seconds)
{
    const std::array<timespec, 2> times{ timespec{ std::time(nullptr) - seconds, 0 },
        timespec{ std::time(nullptr) - seconds, 0 } };
    if (::utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0)
        qFatal("no age");
}

} // namespace

class TestLinuxSpeedProbe : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMeasurementTakesTimeAndLeavesNothing()
    {
        const TwoVolumes f;
        for (const auto &folder : { f.home.path("elsewhere"), f.volume() }) {
            f.home.folder("elsewhere");
            const auto speed = f.speeds.measure({ .folder = folder, .bytes = sample });
            QVERIFY2(speed, qPrintable(speed ? QString() : speed.error()));
            QVERIFY(speed->writeSeconds >= 0.0001);
            QVERIFY(speed->readSeconds >= 0.0001);
            QVERIFY(f.names(folder).empty());
        }
    }

    void whatCanNotBeWrittenSaysWhyAndLeavesNothing()
    {
        const TwoVolumes f("size=1m,mode=755");
        const auto full = f.speeds.measure({ .folder = f.volume(), .bytes = sample });
        QCOMPARE(full.error(), u"There is no space left on the disk."_s);
        QVERIFY(f.names(f.volume()).empty());
        QCOMPARE(::mount(nullptr, f.volume().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
        const auto readOnly = f.speeds.measure({ .folder = f.volume(), .bytes = sample });
        QCOMPARE(readOnly.error(), u"The disk can only be read."_s);
        const auto gone = f.speeds.measure({ .folder = f.onVolume("gone"), .bytes = sample });
        QCOMPARE(gone.error(), u"It is not there any more."_s);
    }

    void aStopLeavesNothing()
    {
        const TwoVolumes f;
        std::stop_source stop;
        stop.request_stop();
        QVERIFY(!f.speeds.measure({ .folder = f.volume(), .bytes = sample, .stop = stop.get_token() }));
        QVERIFY(f.names(f.volume()).empty());
    }

    void onlyProbesOfOlderThanADayAreRemoved()
    {
        const TwoVolumes f;
        const std::string probe = "volume/.quillbrook-probe-";
        const std::string id = "1b4e28ba-2fa1-11d2-883f-0016d3cca42";
        constexpr std::time_t day = 86'400;
        f.home.file(probe + id + "1", 5);
        f.home.file(probe + id + "2", 5);
        f.home.file(probe + "mine", 5);
        f.home.folder(probe + id + "3");
        f.home.link(probe + id + "4", f.home.path("kept"));
        f.home.file("kept", 5);
        for (const auto &name :
            { probe + id + "1", probe + "mine", probe + id + "3", probe + id + "4", std::string("kept") })
            age(f.home.path(name), day + 10);
        age(f.home.path(probe + id + "2"), day - 60);
        QVERIFY(f.speeds.measure({ .folder = f.volume(), .bytes = sample }));
        const std::string name = ".quillbrook-probe-";
        const std::vector<std::string> left{ name + id + "2", name + id + "3", name + id + "4",
            name + "mine" };
        QCOMPARE(f.names(f.volume()), left);
        QVERIFY(f.isThere(f.home.path("kept")));
    }
};

QUILLBROOK_SUITE(TestLinuxSpeedProbe, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_LinuxSpeedProbe.moc"
