// What the screen says and lets be pressed, over made-up drives and copies.

#include "Screens/Offload/OffloadState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibi = qint64{ 1 } << 30;

struct Fixture : ScannedHome
{
    Fixture()
    {
        const auto now = clock.now();
        addPlace(".ollama/models", 3072,
            FileDates{ .lastModified = now.addDays(-60), .created = now.addDays(-220) });
        addPlace(".android/avd", 1024);
        files.entries["/media/disk/."] = {};
        drives.answer = { .available = 400 * gibi };
        relocation.links[path("Library/Developer/Xcode/Archives")]
            = { .text = "/media/disk/Archives", .target = "/media/disk/Archives", .leadsSomewhere = true };
        relocation.links[path("Library/Developer/Xcode/iOS DeviceSupport")]
            = { .text = "/media/away/Support", .target = "/media/away/Support" };
        relocation.size = 6 * gibi;
        scan();
    }

    void pick(double writeSeconds)
    {
        speeds.answer = MeasuredSpeed{ .writeSeconds = writeSeconds, .readSeconds = 0.2 };
        desktop.folderPicker.answer = "/media/disk";
        offload.chooseVolume();
        QTRY_VERIFY(model.offloads().destination());
    }
    [[nodiscard]] const OffloadRow &candidate(int row = 0) { return offload.candidates()->rows().at(row); }

    OffloadState offload{ model };
};

} // namespace

class TestOffloadState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatCouldMoveIsSummedAndListed()
    {
        Fixture f;
        const QAbstractItemModelTester tester(f.offload.candidates());
        QCOMPARE(f.offload.total(), u"4.0 GB could be moved to another drive"_s);
        QCOMPARE(f.offload.candidates()->rows().size(), 2);
        QCOMPARE(f.candidate().title, u"Downloaded AI models"_s);
        QCOMPARE(f.candidate().detail, u"Created 7 months ago · last used 2 months ago"_s);
        QCOMPARE(f.candidate().size, u"3.0 GB"_s);
        QCOMPARE(f.candidate(1).detail, u"Created unknown · last used unknown"_s);
    }

    void aPressWithoutAVolumeAsksForOne()
    {
        Fixture f;
        QSignalSpy wanted(&f.offload, &OffloadState::volumeWanted);
        QVERIFY(f.candidate().actionEnabled);
        f.offload.move(0);
        QCOMPARE(wanted.count(), 1);
        QVERIFY(!f.model.offloads().running());
        QCOMPARE(f.offload.destinationText(), u"Pick a folder on the drive you want to move things to."_s);
    }

    void thePickerIsAskedInItsWords()
    {
        Fixture f;
        f.pick(0.1);
        const auto request = f.desktop.folderPicker.requests.constFirst();
        QCOMPARE(request.prompt, u"Use this folder"_s);
        QCOMPARE(request.message, u"Pick a folder on the drive you want to move things to."_s);
        QCOMPARE(f.offload.destination(), u"/media/disk"_s);
        QCOMPARE(f.offload.destinationText(), u"240 MB/s write · 120 MB/s read · 400 GB free"_s);
        QCOMPARE(f.offload.slowWarning(), QString());
        QCOMPARE(f.offload.lossNote(), QString());
        QVERIFY(!f.offload.destinationFailed());
        f.speeds.answer = std::unexpected(u"The disk can only be read."_s);
        f.offload.chooseVolume();
        QTRY_VERIFY(f.offload.destinationFailed());
        QCOMPARE(f.offload.destination(), QString());
        QCOMPARE(f.offload.destinationText(), u"Cannot write there: The disk can only be read."_s);
    }

    void theWindowOpensOnlyAtAVolumeThatAnswers_data()
    {
        QTest::addColumn<std::optional<bool>>("isInternal");
        QTest::addColumn<std::optional<bool>>("isRemovable");
        QTest::addColumn<QString>("folder");
        using Told = std::optional<bool>;
        QTest::newRow("inside") << Told(true) << Told(false) << u"/media/disk"_s;
        QTest::newRow("plugged in") << Told(false) << Told(true) << u"/media/disk"_s;
        QTest::newRow("on another machine") << Told(false) << Told(false) << QString();
        QTest::newRow("nobody knows") << Told() << Told() << QString();
    }

    void theWindowOpensOnlyAtAVolumeThatAnswers()
    {
        QFETCH(std::optional<bool>, isInternal);
        QFETCH(std::optional<bool>, isRemovable);
        QFETCH(QString, folder);
        Fixture f;
        f.drives.answer.isInternal = isInternal;
        f.drives.answer.isRemovable = isRemovable;
        f.pick(0.1);
        f.offload.chooseVolume();
        QTRY_COMPARE(f.desktop.folderPicker.requests.size(), 2);
        const auto home = f.home.realHomeDirectory();
        QCOMPARE(f.desktop.folderPicker.requests.at(0).directory, home);
        QCOMPARE(f.desktop.folderPicker.requests.at(1).directory, folder.isEmpty() ? home : folder);
    }

    void aSlowDriveHasToBeAccepted_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("warning");
        QTest::newRow("just fast enough") << 0.16 << QString();
        QTest::newRow("slow")
            << 0.2 << u"This volume writes at 120 MB/s — roughly 19× slower than this Mac's internal disk."_s;
        QTest::newRow("slower than one")
            << 48.0
            << u"This volume writes at 0 MB/s — roughly 2300× slower than this Mac's internal disk."_s;
    }

    void aSlowDriveHasToBeAccepted()
    {
        QFETCH(double, seconds);
        QFETCH(QString, warning);
        Fixture f;
        f.pick(seconds);
        QCOMPARE(f.offload.slowWarning(), warning);
        QVERIFY(!f.offload.acceptSlowBus());
        QCOMPARE(f.candidate().actionEnabled, warning.isEmpty());
        f.offload.setAcceptSlowBus(true);
        QVERIFY(f.candidate().actionEnabled);
    }

    void aRunningCopySaysHowFarItIsAndTheOthersWait()
    {
        Fixture f;
        f.pick(0.1);
        f.offload.recheck();
        QSemaphore held;
        QSemaphore reached;
        f.relocation.onCopy = [&](const CopyOrder &order) {
            order.onProgress(gibi);
            reached.release();
            held.acquire();
            return CopyResult{ .error = u"it broke"_s };
        };
        f.offload.move(0);
        QVERIFY(reached.tryAcquire(1, 5000));
        QTRY_COMPARE(f.candidate().progressText.section(u" · "_s, 0, 0), u"1.0 GB of 3.0 GB"_s);
        QVERIFY(f.candidate().running);
        QVERIFY(qFuzzyCompare(f.candidate().progress, 1.0 / 3));
        QVERIFY(!f.candidate(1).running);
        QVERIFY(!f.candidate(1).actionEnabled);
        f.offload.move(1);
        held.release();
        QTRY_VERIFY(!f.candidate().running);
        QVERIFY(f.candidate(1).actionEnabled);
        QCOMPARE(f.offload.activity(), QStringList{ u"✗ Downloaded AI models: Copy failed: it broke"_s });
        QCOMPARE(f.relocation.orders.size(), 1U);
    }

    void whileSomethingIsRemovedNothingIsMoved()
    {
        Fixture f;
        f.pick(0.1);
        f.offload.setShown(true);
        QTRY_COMPARE(f.offload.moved()->rows().size(), 2);
        const auto moved = [&f] { return f.offload.moved()->rows().at(1); };
        f.offload.askToBringBack(1);
        QSemaphore go;
        f.model.removals().enqueue({ .work = [&](const auto & /*watch*/) { go.acquire(); } });
        QVERIFY(!f.candidate().actionEnabled);
        QVERIFY(!moved().actionEnabled);
        // What was asked about before waits.
        f.offload.bringBack();
        QVERIFY(moved().running);
        QCOMPARE(moved().progressText, u"Waiting until nothing else is being removed…"_s);
        f.offload.stop();
        QVERIFY(!moved().running);
        go.release();
        QTRY_VERIFY(f.candidate().actionEnabled);
        QVERIFY(moved().actionEnabled);
    }

    void whatLiesElsewhereIsFollowedWhileTheScreenIsShown()
    {
        Fixture f;
        Q_EMIT f.desktop.driveChanges.changed();
        QVERIFY(f.offload.moved()->isEmpty());
        f.offload.setShown(true);
        QVERIFY(f.desktop.driveChanges.watched);
        QTRY_COMPARE(f.offload.moved()->rows().size(), 2);
        QTRY_COMPARE(f.offload.moved()->rows().at(1).size, u"6.0 GB"_s);
        const auto there = f.offload.moved()->rows().at(1);
        QCOMPARE(there.detail, u"Backup · 400 GB free"_s);
        QVERIFY(there.actionEnabled);
        const auto away = f.offload.moved()->rows().at(0);
        QCOMPARE(away.detail, u"Backup · not connected"_s);
        QCOMPARE(away.size, u"—"_s);
        QVERIFY(away.warns);
        QVERIFY(!away.actionEnabled);
        f.relocation.links.clear();
        Q_EMIT f.desktop.driveChanges.changed();
        QTRY_VERIFY(f.offload.moved()->isEmpty());
        f.offload.setShown(false);
        QVERIFY(!f.desktop.driveChanges.watched);
    }

    void aDriveThatDoesNotAnswerIsMarkedAndTheOthersAreShown()
    {
        QSemaphore answer;
        Fixture f;
        const auto release = qScopeGuard([&answer] { answer.release(100); });
        f.relocation.onFollow = [&answer](const std::string &place) {
            if (place.ends_with("Archives"))
                answer.acquire();
        };
        f.offload.setShown(true);
        QTRY_COMPARE(f.offload.moved()->rows().size(), 2);
        QCOMPARE(f.offload.moved()->rows().at(0).detail, u"Backup · not connected"_s);
        const auto silent = f.offload.moved()->rows().at(1);
        QCOMPARE(silent.detail, u"Backup · not answering"_s);
        QCOMPARE(silent.size, u"—"_s);
        QVERIFY(silent.warns);
        QVERIFY(!silent.actionEnabled);
        answer.release();
        QTRY_COMPARE(f.offload.moved()->rows().at(1).detail, u"Backup · 400 GB free"_s);
    }

    void bringingBackIsAskedAboutWithTheFoldersName()
    {
        Fixture f;
        f.offload.setShown(true);
        QTRY_COMPARE(f.offload.moved()->rows().size(), 2);
        QSignalSpy asked(&f.offload, &OffloadState::bringBackAsked);
        f.offload.askToBringBack(1);
        QCOMPARE(asked.count(), 1);
        QCOMPARE(f.offload.questionTitle(), u"Bring back Finished app builds?"_s);
        QCOMPARE(f.offload.questionMessage(),
            u"/media/disk/Archives is copied back to this disk, in the place of its shortcut. Then that "
            u"folder "
            u"goes to the Trash of its own drive."_s);
        f.relocation.why = u"A drive is mounted in it."_s;
        f.offload.bringBack();
        QTRY_COMPARE(
            f.offload.activity(), QStringList{ u"✗ Finished app builds: A drive is mounted in it."_s });
    }

    // Whoever named the drive could turn the words of the question around, or add lines to it.
    void namesOfDrivesAndFoldersStayInTheirLine()
    {
        Fixture f;
        const auto folder = u"/media/\u202Eksid/A\nB"_s.toStdString();
        f.relocation.links[f.path("Library/Developer/Xcode/Archives")]
            = { .text = folder, .target = folder, .leadsSomewhere = true };
        f.relocation.why = u"Not \u202Enow\n✓."_s;
        f.drives.drive = u"\u202Ekcab\nup"_s;
        f.offload.setShown(true);
        QTRY_COMPARE(f.offload.moved()->rows().size(), 2);
        QCOMPARE(f.offload.moved()->rows().at(0).detail, u" kcab up · not connected"_s);
        QCOMPARE(f.offload.moved()->rows().at(1).detail, u" kcab up · 400 GB free"_s);
        f.offload.askToBringBack(1);
        QVERIFY2(f.offload.questionMessage().startsWith(u"/media/ ksid/A B is copied back"_s),
            qPrintable(f.offload.questionMessage()));
        f.offload.bringBack();
        QTRY_COMPARE(f.offload.activity(), QStringList{ u"✗ Finished app builds: Not  now ✓."_s });

        f.files.entries[folder + "/."] = {};
        f.drives.answer.isInternal = true;
        f.desktop.folderPicker.answer = folder;
        f.offload.chooseVolume();
        QTRY_COMPARE(f.offload.destination(), u"/media/ ksid/A B"_s);
        f.offload.chooseVolume();
        QTRY_COMPARE(f.desktop.folderPicker.requests.size(), 2);
        QCOMPARE(f.desktop.folderPicker.requests.constLast().directory, QString::fromStdString(folder));
    }
};

QUILLBROOK_SUITE(TestOffloadState, QCoreApplication)
#include "tst_OffloadState.moc"
