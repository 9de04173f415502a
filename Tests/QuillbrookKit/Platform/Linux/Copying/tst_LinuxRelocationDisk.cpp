// What stands in the way of a move, on real mounts, and what is made and taken away by its inode alone.

#include "Support/Suite.h"
#include "Support/TwoVolumes.h"

#include <QTest>

#include <fcntl.h>
#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(TwoVolumes &)>;

} // namespace

class TestLinuxRelocationDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatCanNotMoveIsSaid_data()
    {
        QTest::addColumn<Change>("make");
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QByteArray>("into");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, Change make, QByteArray source, QByteArray into, QString text) {
            QTest::newRow(name) << std::move(make) << source << into << text;
        };
        const Change nothing = [](TwoVolumes &) {};
        const Change mount = [](TwoVolumes &f) {
            f.home.folder("source/inner");
            if (::mount("none", f.home.path("source/inner").c_str(), "tmpfs", 0, nullptr) != 0)
                qFatal("no mount");
        };
        row("fits", nothing, "source", "volume", QString());
        row("gone", nothing, "nothing", "volume", u"%1 is not there any more."_s);
        row(
            "a link", [](TwoVolumes &f) { f.home.link("link", "source"); }, "link", "volume",
            u"%1 is a link already."_s);
        row(
            "a pipe", [](TwoVolumes &f) { f.home.pipe("pipe"); }, "pipe", "volume",
            u"%1 is neither a folder nor a file."_s);
        row("a mount", mount, "source/inner", "volume", u"%1 is a drive of its own."_s);
        row("holds a mount", mount, "source", "volume", u"A drive is mounted in %1."_s);
        row("into nothing", nothing, "source", "volume/gone", u"%2 is not there any more."_s);
        row(
            "into a file", [](TwoVolumes &f) { f.home.file("volume/file"); }, "source", "volume/file",
            u"%2 is not there any more."_s);
        row(
            "into what can only be read",
            [](TwoVolumes &f) {
                if (::mount(nullptr, f.volume().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
                    qFatal("no remount");
            },
            "source", "volume", u"%2 can only be read."_s);
        row("into itself", nothing, "source", "source", u"%2 lies in %1."_s);
        row(
            "into itself by a link", [](TwoVolumes &f) { f.home.link("way", "source/deep"); }, "source",
            "way", u"%2 lies in %1."_s);
        row("from within", nothing, "source/deep", "source", u"%1 lies in %2 already."_s);
        row(
            "on the same file system", [](TwoVolumes &f) { f.home.folder("other"); }, "source", "other",
            u"%2 is on the same drive. Moving there would free nothing."_s);
        row(
            "on another mount of it",
            [](TwoVolumes &f) {
                f.home.folder("other");
                f.home.folder("bound");
                if (::mount(
                        f.home.path("other").c_str(), f.home.path("bound").c_str(), nullptr, MS_BIND, nullptr)
                    != 0)
                    qFatal("no mount");
            },
            "source", "bound", u"%2 is on the same drive. Moving there would free nothing."_s);
    }

    void whatCanNotMoveIsSaid()
    {
        QFETCH(Change, make);
        QFETCH(QByteArray, source);
        QFETCH(QByteArray, into);
        QFETCH(QString, text);
        TwoVolumes f;
        f.home.folder("source/deep");
        make(f);
        const auto from = f.home.path(source.toStdString());
        const auto to = f.home.path(into.toStdString());
        auto expected = text;
        expected.replace(u"%1"_s, QString::fromStdString(from)).replace(u"%2"_s, QString::fromStdString(to));
        QCOMPARE(f.disk.objection(from, to).value_or(QString()), expected);
        for (const auto *name : { "source/inner", "bound" })
            ::umount2(f.home.path(name).c_str(), MNT_DETACH);
    }

    void nothingIsMadeWhereSomethingIs()
    {
        TwoVolumes f;
        f.home.fileWith("source/file", "new");
        f.home.fileWith("volume/target/mine", "mine");
        const auto result = f.disk.copy({ .source = f.home.path("source"), .target = f.onVolume("target") });
        QVERIFY(result.isTaken);
        QVERIFY(!result.made);
        QCOMPARE(f.names(f.onVolume("target")), std::vector<std::string>{ "mine" });
    }

    void aTargetThatIsExchangedMidwayGetsNothingAndIsNotDropped()
    {
        TwoVolumes f;
        f.home.fileWith("source/file", "new");
        f.home.fileWith("mine/own", "own");
        // Between the making of the target and the copying into it.
        f.calls.before = [&](std::string_view call, const char *name) {
            if (call == "statx" && *name == '\0' && f.isThere(f.onVolume("target"))
                && !f.isThere(f.onVolume("taken"))) {
                std::filesystem::rename(f.onVolume("target"), f.onVolume("taken"));
                f.home.link("volume/target", f.home.path("mine"));
            }
            return 0;
        };
        const auto result = f.disk.copy({ .source = f.home.path("source"), .target = f.onVolume("target") });
        QCOMPARE(result.error, std::nullopt);
        QCOMPARE(f.names(f.home.path("mine")), std::vector<std::string>{ "own" });
        QCOMPARE(f.content(f.onVolume("taken/file")), std::string("new"));
        f.disk.drop(f.onVolume("target"), *result.made);
        QVERIFY(std::filesystem::is_symlink(f.onVolume("target")));
        QCOMPARE(f.names(f.home.path("mine")), std::vector<std::string>{ "own" });
    }

    void whatTakesThePlaceOfALinkAtTheLastMomentGoesBack()
    {
        TwoVolumes f;
        f.home.link("place", f.volume());
        f.home.fileWith("copy/file", "copy");
        const auto link = f.disk.linkAt(f.home.path("place"));
        QVERIFY(link && link->leadsSomewhere);
        struct statx status = {};
        QCOMPARE(f.calls.FileCalls::statAt(AT_FDCWD, f.home.path("copy").c_str(), 0, status), 0);
        const FileIdentity copy{ .device = link->identity.device,
            .inode = status.stx_ino,
            .born = status.stx_btime.tv_sec * 1'000'000'000 + status.stx_btime.tv_nsec };
        bool isFirst = true;
        f.calls.before = [&](std::string_view call, const char *) {
            if (call == "renameat2" && std::exchange(isFirst, false)) {
                std::filesystem::remove(f.home.path("place"));
                f.home.fileWith("place/mine", "mine");
            }
            return 0;
        };
        QVERIFY(!f.disk.putInPlaceOfLink(f.home.path("copy"), copy, f.home.path("place"), link->identity));
        QCOMPARE(f.content(f.home.path("place/mine")), std::string("mine"));
        QCOMPARE(f.content(f.home.path("copy/file")), std::string("copy"));
    }

    void linksAreReadAsTheyStand()
    {
        TwoVolumes f;
        f.home.link("away", "volume/../nowhere/./deep");
        const auto away = f.disk.linkAt(f.home.path("away"));
        QVERIFY(away);
        QCOMPARE(away->text, std::string("volume/../nowhere/./deep"));
        QCOMPARE(away->target, f.home.path("nowhere/deep"));
        QVERIFY(!away->leadsSomewhere);
        const auto unfollowed = f.disk.unfollowedLinkAt(f.home.path("away"));
        QVERIFY(unfollowed == away);
        QVERIFY(!f.disk.linkAt(f.volume()));
        QVERIFY(!f.disk.unfollowedLinkAt(f.volume()));
        QVERIFY(!f.disk.linkAt(f.home.path("nothing")));
    }
};

QUILLBROOK_SUITE(TestLinuxRelocationDisk, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_LinuxRelocationDisk.moc"
