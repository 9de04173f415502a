#include "Screens/Window/QuitState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>

using namespace Quillbrook;

class TestQuitState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theQuestionStandsAsLongAsSomethingIsMoved()
    {
        ScannedHome home;
        home.addPlace(".ollama/models", 200);
        home.files.entries["/media/disk/."] = {};
        home.drives.answer = { .available = qint64{ 1 } << 40 };
        home.scan();
        QSemaphore held;
        home.relocation.onCopy = [&held](const CopyOrder &) {
            held.acquire();
            return CopyResult{ .made = FileIdentity{ .device = 1, .inode = 2 } };
        };
        QuitState quit(home.model);
        QVERIFY(!quit.ask());
        QVERIFY(!quit.asked());

        auto &driver = home.model.offloads();
        driver.profileDestination("/media/disk");
        QTRY_VERIFY(driver.destination());
        driver.offload(driver.offloadCandidates().at(0), false);
        QSignalSpy chosen(&quit, &QuitState::quitChosen);
        QVERIFY(quit.ask());
        QVERIFY(quit.asked());
        QVERIFY(quit.isAboutDrives());
        quit.stay();
        QVERIFY(!quit.asked());
        QVERIFY(quit.ask());
        quit.quit();
        QVERIFY(!quit.asked());
        QCOMPARE(chosen.count(), 1);
        // Nothing is left to ask about.
        QVERIFY(quit.ask());
        driver.stop();
        held.release();
        QTRY_VERIFY(!quit.asked());
        QCOMPARE(chosen.count(), 1);
    }

    void removalsAreAskedAboutToo()
    {
        ScannedHome home;
        QuitState quit(home.model);
        QSemaphore go;
        home.model.removals().enqueue({ .work = [&](const auto & /*watch*/) { go.acquire(); } });
        QVERIFY(quit.ask());
        QVERIFY(!quit.isAboutDrives());
        go.release();
        QTRY_VERIFY(!quit.asked());
        QVERIFY(!quit.ask());
    }
};

QUILLBROOK_SUITE(TestQuitState, QCoreApplication)
#include "tst_QuitState.moc"
