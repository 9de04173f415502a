// Relocations between two real volumes: of each step that can fail, what it leaves at the source, at the
// target, in the place of the link and in the Trash.

#include "Offload/Relocation.h"
#include "StandardisedPath.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"
#include "Support/TwoVolumes.h"

#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 block = 4096;
constexpr double fast = 500;

struct RelocationFixture : TwoVolumes
{
    RelocationFixture()
    {
        home.file("models/large", 5 * block);
        home.fileWith("models/deep/small", std::string(block, 's'));
        before = everything(home.path("models"));
    }

    [[nodiscard]] Offload::Relocation order(const std::string &name = "models", qint64 bytes = 6 * block)
    {
        return { .source = home.path(name),
            .into = volume(),
            .bytes = bytes,
            .profile = { .path = volume(), .writeMBPerSecond = fast, .freeBytes = 1'000'000'000 } };
    }
    [[nodiscard]] std::expected<std::string, OffloadError> relocate(const Offload::Relocation &order)
    {
        return Offload::relocate(services(), order);
    }
    [[nodiscard]] QString failure(const Offload::Relocation &order)
    {
        const auto result = relocate(order);
        return result ? u"it did not fail"_s : result.error().description();
    }
    [[nodiscard]] QStringList trashed() const
    {
        QStringList found;
        for (const auto &name : names(places.homeTrash + "/files"))
            found += QString::fromStdString(name);
        return found;
    }
    [[nodiscard]] bool isUntouched() const
    {
        return everything(home.path("models")) == before && trashed().isEmpty();
    }

    std::map<std::string, std::string> before;
};

// What a copy has to keep besides names and content.
struct Kept
{
    mode_t mode = 0;
    timespec modified{};
    nlink_t links = 0;
    blkcnt_t blocks = 0;
    std::string attribute{};

    [[nodiscard]] static Kept of(const std::string &path)
    {
        struct stat status = {};
        std::array<char, 64> value{};
        const auto length = ::lgetxattr(path.c_str(), "user.note", value.data(), value.size());
        if (::lstat(path.c_str(), &status) != 0)
            qFatal("nothing at %s", path.c_str());
        return { .mode = status.st_mode,
            .modified = status.st_mtim,
            .links = S_ISDIR(status.st_mode) ? 0 : status.st_nlink,
            .blocks = S_ISDIR(status.st_mode) ? 0 : status.st_blocks,
            .attribute = length > 0 ? std::string(value.data(), size_t(length)) : std::string() };
    }
    [[nodiscard]] bool operator==(const Kept &other) const
    {
        return mode == other.mode && modified.tv_sec == other.modified.tv_sec
            && modified.tv_nsec == other.modified.tv_nsec && links == other.links && blocks == other.blocks
            && attribute == other.attribute;
    }
};

std::map<std::string, Kept> keptBelow(const std::string &path)
{
    std::map<std::string, Kept> found{ { "", Kept::of(path) } };
    for (const auto &entry : std::filesystem::recursive_directory_iterator(path))
        found[entry.path().string().substr(path.size())] = Kept::of(entry.path().string());
    return found;
}

} // namespace

class TestRelocation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checksComeInTheirOrderAndTouchNothing_data()
    {
        using Order = Offload::Relocation;
        QTest::addColumn<std::function<void(Order &)>>("change");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, std::function<void(Order &)> change, const QString &text) {
            QTest::newRow(name) << change << text;
        };
        const auto slow
            = u"This drive is slow (60 MB/s). Anything moved here will be slower to open, every time."_s;
        row(
            "hot and slow",
            [](Order &order) {
                order.suitability.hotReason = u"Too warm."_s;
                order.profile.writeMBPerSecond = 60;
            },
            u"Too warm."_s);
        row(
            "slow", [](Order &order) { order.profile.writeMBPerSecond = 60.4; }, slow);
        row(
            "slow but accepted, and no room",
            [](Order &order) {
                order.profile.writeMBPerSecond = 60;
                order.allowSlowBus = true;
                order.profile.freeBytes = 0;
            },
            u"Needs 24.0 KB, only 0 B free."_s);
        row(
            "room for exactly that", [](Order &order) { order.profile.freeBytes = order.bytes; },
            u"Needs 24.0 KB, only 24.0 KB free."_s);
        row(
            "taken, and on the same drive", [](Order &order) { order.into = parentOf(order.into); },
            u"%1 already exists."_s);
    }

    void checksComeInTheirOrderAndTouchNothing()
    {
        RelocationFixture f;
        QFETCH(std::function<void(Offload::Relocation &)>, change);
        QFETCH(QString, text);
        auto order = f.order();
        change(order);
        QCOMPARE(f.failure(order), text.contains(u'%') ? text.arg(f.home.text("models")) : text);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }

    void whatStandsAtTheTargetIsLeftAlone_data()
    {
        QTest::addColumn<QByteArray>("kind");
        for (const auto *kind : { "file", "folder", "dangling link" })
            QTest::newRow(kind) << QByteArray(kind);
    }

    void whatStandsAtTheTargetIsLeftAlone()
    {
        QFETCH(QByteArray, kind);
        RelocationFixture f;
        if (kind == "file")
            f.home.fileWith("volume/models", "mine");
        else if (kind == "folder")
            f.home.fileWith("volume/models/mine", "mine");
        else
            f.home.link("volume/models", "nowhere");
        const auto there = f.everything(f.volume());
        QCOMPARE(f.failure(f.order()), u"%1 already exists."_s.arg(f.home.text("volume/models")));
        QVERIFY(f.isUntouched());
        QCOMPARE(f.everything(f.volume()), there);
    }

    void aTreeIsWholeBehindItsLink()
    {
        RelocationFixture f;
        f.home.hardLink("models/twin", "models/large");
        f.home.link("models/away", "/nowhere at all");
        f.home.fileWith("models/\xFF\n'odd\\", "odd");
        f.home.fileWith("models/deep/-rf", "dash");
        f.home.pipe("models/pipe");
        f.home.file("models/holes");
        QCOMPARE(::truncate(f.home.path("models/holes").c_str(), 1'000'000'000), 0);
        QCOMPARE(::setxattr(f.home.path("models/large").c_str(), "user.note", "kept", 4, 0), 0);
        f.home.permissions("models/deep/small", 0640);
        const std::array<timespec, 2> times{ timespec{ 1'000'000'000, 5 }, { 1'100'000'000, 123'456'789 } };
        for (const auto *name : { "models/deep/small", "models/deep", "models" })
            QCOMPARE(::utimensat(AT_FDCWD, f.home.path(name).c_str(), times.data(), 0), 0);
        f.home.permissions("models/deep", 0550);
        const auto kept = keptBelow(f.home.path("models"));

        const auto moved = f.relocate(f.order("models", 8 * block));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error().description()));
        QCOMPARE(*moved, f.onVolume("models"));
        QCOMPARE(std::filesystem::read_symlink(f.home.path("models")).string(), f.onVolume("models"));
        QVERIFY(keptBelow(f.onVolume("models")) == kept);
        QCOMPARE(f.content(f.home.path("models/\xFF\n'odd\\")), std::string("odd"));
        QCOMPARE(f.content(f.home.path("models/deep/small")), std::string(block, 's'));
        QCOMPARE(std::filesystem::read_symlink(f.home.path("models/away")).string(),
            std::string("/nowhere at all"));
        QCOMPARE(f.trashed(), QStringList{ u"models"_s });
        QCOMPARE(f.content(f.files("models/deep/small")), std::string(block, 's'));
        f.home.permissions("volume/models/deep", 0750);
        ::chmod(f.files("models/deep").c_str(), 0750);
    }

    void aFileIsMovedToo()
    {
        RelocationFixture f;
        f.home.fileWith("\xFEmodel.bin", std::string(3 * block, 'm'));
        const auto moved = f.relocate(f.order("\xFEmodel.bin", 3 * block));
        QVERIFY2(moved, qPrintable(moved ? QString() : moved.error().description()));
        QVERIFY(std::filesystem::is_symlink(f.home.path("\xFEmodel.bin")));
        QCOMPARE(f.content(f.home.path("\xFEmodel.bin")), std::string(3 * block, 'm'));
        QCOMPARE(Kept::of(f.onVolume("\xFEmodel.bin")).mode, Kept::of(f.files("\xFEmodel.bin")).mode);
    }

    void aFailedCopyLeavesWhatItMade()
    {
        RelocationFixture f;
        f.home.file("models/too large", 9'000'000);
        f.before = f.everything(f.home.path("models"));
        const auto text = f.failure(f.order());
        // Which of its files the tool tells of last, the file system decides.
        QVERIFY2(text.startsWith(u"Copy failed: error writing '%1/"_s.arg(f.home.text("volume/models")))
                && text.endsWith(u"': No space left on device"_s),
            qPrintable(text));
        QVERIFY(f.isUntouched());
        QVERIFY(f.isThere(f.onVolume("models")));
        // And a retry stops there until the person has cleared it.
        QCOMPARE(f.failure(f.order()), u"%1 already exists."_s.arg(f.home.text("volume/models")));
    }

    void aCopyOfAnotherSizeIsRemoved()
    {
        RelocationFixture f;
        const auto result = f.relocate(f.order("models", 7 * block));
        QCOMPARE(result.error().kind, OffloadError::Kind::verificationFailed);
        QCOMPARE(result.error().description(),
            u"Copy did not verify (expected 28.0 KB, got 24.0 KB). Nothing was removed."_s);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }

    void aCopyIsVerifiedWithinTwoPercent()
    {
        QVERIFY(Offload::isVerified(1000, 1019));
        QVERIFY(Offload::isVerified(1000, 981));
        QVERIFY(!Offload::isVerified(1000, 1020));
        QVERIFY(!Offload::isVerified(1000, 980));
        QVERIFY(Offload::isVerified(0, 0));
        QVERIFY(!Offload::isVerified(0, 1));
    }

    void whatCanNotGoAsideStaysAndTheCopyGoes()
    {
        RelocationFixture f;
        f.hookedTrash.problem = u"There is no Trash for it."_s;
        QCOMPARE(f.failure(f.order()), u"Could not move the original aside: There is no Trash for it."_s);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }

    void aSourceThatWasExchangedStays()
    {
        RelocationFixture f;
        const auto order = f.order();
        f.hookedTrash.beforeMove = [&](const std::string &) {
            std::filesystem::rename(f.home.path("models"), f.home.path("others"));
            f.home.fileWith("models/new", "new");
        };
        QCOMPARE(f.failure(order), u"Could not move the original aside: It was changed in the meantime."_s);
        QCOMPARE(f.content(f.home.path("models/new")), std::string("new"));
        QVERIFY(f.trashed().isEmpty());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }

    void aLinkThatCanNotBeMadeTakesNothingBack()
    {
        RelocationFixture f;
        f.hookedTrash.afterMove = [&](const std::string &) { f.home.fileWith("models", "in the way"); };
        QCOMPARE(f.failure(f.order()),
            u"Copied to %1 but could not create the link. The original is in the Trash."_s.arg(
                f.home.text("volume/models")));
        QCOMPARE(f.content(f.home.path("models")), std::string("in the way"));
        QCOMPARE(f.content(f.onVolume("models/deep/small")), std::string(block, 's'));
        QCOMPARE(f.content(f.files("models/deep/small")), std::string(block, 's'));
    }

    void aStopTakesAwayWhatWasMade()
    {
        RelocationFixture f;
        std::stop_source stop;
        auto order = f.order();
        order.stop = stop.get_token();
        bool isMade = false;
        f.calls.before = [&](std::string_view call, const char *) {
            isMade = isMade || call == "mkdirat";
            if (isMade)
                stop.request_stop();
            return 0;
        };
        QCOMPARE(f.failure(order), u"Stopped. Nothing was moved."_s);
        QVERIFY(isMade);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
        // And one that came before makes nothing.
        isMade = false;
        QCOMPARE(f.failure(order), u"Stopped. Nothing was moved."_s);
        QVERIFY(!isMade);
    }

    void whatWasGivenUpIsNotTouched()
    {
        RelocationFixture f;
        auto order = f.order();
        bool isWhole = false;
        order.mayFinish = [&] {
            isWhole = f.isThere(f.onVolume("models/deep/small"));
            return false;
        };
        QCOMPARE(f.failure(order), u"Stopped. Nothing was moved."_s);
        QVERIFY(isWhole);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }

    void aStopDoesNotWaitForASlowDrive()
    {
        RelocationFixture f;
        std::stop_source stop;
        auto order = f.order();
        order.stop = stop.get_token();
        bool isGoneMeanwhile = false;
        // The drive writes for as long as there is something to be written.
        f.calls.beforeSync = [&] {
            const bool isMade = f.isThere(f.onVolume("models/deep/small"));
            stop.request_stop();
            for (int tries = 0; tries < 1000 && f.isThere(f.onVolume("models")); ++tries)
                QThread::msleep(10);
            isGoneMeanwhile = isMade && !f.isThere(f.onVolume("models"));
        };
        QCOMPARE(f.failure(order), u"Stopped. Nothing was moved."_s);
        QVERIFY(isGoneMeanwhile);
        QVERIFY(f.isUntouched());
        QVERIFY(!f.isThere(f.onVolume("models")));
    }
};

QUILLBROOK_SUITE(TestRelocation, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_Relocation.moc"
