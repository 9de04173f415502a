// The foot of the main window's sidebar, and the gate that stands before a sandbox has a folder.

#include "Support/MainWindowSuite.h"
#include "Support/Suite.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestMainWindowSidebar : public MainWindowSuite
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void gaugeNamesTheVolume()
    {
        QVERIFY(shows(u"250 B"_s));
        QVERIFY(shows(u"75% of 1000 B used"_s));
        auto *note = m_window->findChild<QQuickItem *>(u"gapNote"_s);
        QVERIFY(note);
        QVERIFY(!note->isVisible());

        const qint64 gibi = qint64{ 1024 } * 1024 * 1024;
        m_machine->volumes.answer
            = VolumeCapacity{ .available = gibi, .availableForImportantUsage = 2 * gibi, .total = 4 * gibi };
        m_model->volume().refreshVolume();
        QVERIFY(note->isVisible());
        QVERIFY(
            shows(u"Finder says 2.0 GB — it counts 1.0 GB of purgeable cache that a build cannot use."_s));
    }

    void gateAsksForTheHomeFolder()
    {
        openInSandbox();
        const auto scans = m_machine->directories.sessionsMade();
        QVERIFY(shows(u"Quillbrook needs to see your files to measure them"_s));
        QVERIFY(shows(u"It reads names, sizes and dates — never the contents of a file. Choose your home "
                      "folder and it will not ask again."_s));
        QVERIFY(!item(Role::Button, u"Rescan"_s)->isEnabled());
        QVERIFY(!showsTheScan());
        for (const auto &row : paneTable) {
            m_screens->content()->setPane(row.pane);
            QVERIFY(item(Role::Button, u"Choose my home folder…"_s));
        }
        m_screens->content()->setPane(Pane::warden);
        auto *choose = item(Role::Button, u"Choose my home folder…"_s);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*choose));
        QTRY_COMPARE(m_machine->desktop.folderPicker.requests.size(), 1);
        QVERIFY(item(Role::Button, u"Choose my home folder…"_s));
        QCOMPARE(m_machine->directories.sessionsMade(), scans);

        m_machine->desktop.folderPicker.answer = "/home/someone";
        pressAccessibly(choose);
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
        QTRY_VERIFY(!item(Role::Button, u"Choose my home folder…"_s));
        QVERIFY(item(Role::Button, u"Rescan"_s)->isEnabled());
        QCOMPARE(m_machine->desktop.folderPicker.requests.size(), 2);
        QCOMPARE(m_machine->directories.sessionsMade(), scans + 1);
    }

    void gateCanBeReachedAndPressedByKeys()
    {
        openInSandbox();
        auto *choose = item(Role::Button, u"Choose my home folder…"_s);
        QVERIFY(choose);
        for (int i = 0; i < 10 && !choose->hasActiveFocus(); ++i)
            QTest::keyClick(m_window, Qt::Key_Tab);
        QVERIFY(choose->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_COMPARE(m_machine->desktop.folderPicker.requests.size(), 1);
    }

    void grantedFolderIsToldOnlyInASandbox()
    {
        QVERIFY(!item(Role::Button, u"Change"_s));
        openInSandbox("/home/someone");
        QVERIFY(item(Role::Button, u"Change"_s));
        QVERIFY(shows(u"/home/someone"_s));
        QVERIFY(!shows(u"That is not this Mac's startup disk"_s));
        QVERIFY(!item(Role::Button, u"Choose my home folder…"_s));
    }

    void grantedFolderCanBeChanged()
    {
        openInSandbox("/home/someone");
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
        m_machine->desktop.folderPicker.answer = "/media/backup";
        auto *change = item(Role::Button, u"Change"_s);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*change));
        QTRY_VERIFY(shows(u"/media/backup"_s));
        QVERIFY(shows(u"That is not this Mac's startup disk"_s));
        QVERIFY(shows(u"Freeing space there will not help a full internal disk."_s));
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
        QCOMPARE(m_model->scans().scanRoot(), u"/media/backup"_s);

        m_machine->desktop.folderPicker.answer.reset();
        pressAccessibly(change);
        QTRY_VERIFY(item(Role::Button, u"Choose my home folder…"_s));
        QVERIFY(shows(u"not chosen"_s));
    }

    void newerVersionIsTold()
    {
        const auto line = u"Quillbrook 2.0 is out"_s;
        QTRY_COMPARE(m_machine->desktop.http.requests.size(), 1);
        QVERIFY(!item(Role::Button, line));
        m_machine->defaults.values.remove(u"Quillbrook.updateCheckedAt"_s);
        m_machine->desktop.http.answer = HttpAnswer{ .status = 200,
            .body = R"({"version": "2.0", "url": "https:\/\/updates.test/2.0"})" };
        QTRY_VERIFY(m_model->scans().phase().kind != Phase::Kind::idle);
        m_model->updates().checkForUpdate();
        QTRY_VERIFY(item(Role::Button, line));
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*item(Role::Button, line)));
        const QUrl page(u"https://updates.test/2.0"_s);
        QCOMPARE(m_machine->desktop.links.opened, QList<QUrl>{ page });
        pressAccessibly(item(Role::Button, line));
        QCOMPARE(m_machine->desktop.links.opened, QList<QUrl>({ page, page }));
        // A pane that is chosen by its key leaves the keyboard there, too.
        item(Role::Button, line)->forceActiveFocus();
        QTest::keyClick(m_window, Qt::Key_2, Qt::ControlModifier);
        QCOMPARE(pane(), Pane::map);
        QVERIFY(item(Role::Button, line)->hasActiveFocus());
    }

    void fullSidebarIsNotCut_data()
    {
        QTest::addColumn<bool>("isGated");
        QTest::newRow("granted") << false;
        QTest::newRow("gate") << true;
    }

    // Everything that the foot of the sidebar can hold at once.
    void fullSidebarIsNotCut()
    {
        QFETCH(bool, isGated);
        const qint64 gibi = qint64{ 1024 } * 1024 * 1024;
        m_machine->volumes.answer = VolumeCapacity{
            .available = 5 * gibi, .availableForImportantUsage = 19 * gibi, .total = 233 * gibi
        };
        m_machine->desktop.http.answer = HttpAnswer{ .status = 200,
            .body = R"({"version": "2.0", "url": "https:\/\/updates.test/2.0"})" };
        m_machine->defaults.values.remove(u"Quillbrook.updateCheckedAt"_s);
        openInSandbox(isGated ? QByteArray() : QByteArray("/mnt/a"));
        QTRY_VERIFY(item(Role::Button, u"Quillbrook 2.0 is out"_s));
        if (!isGated)
            QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
        nothingIsCut(m_window->minimumSize());
        const auto *rows = item(Role::ListItem, u"Past answers"_s);
        const auto *gauge = m_window->findChild<QQuickItem *>(u"usedBar"_s);
        QVERIFY(rows->mapToScene({ 0, rows->height() }).y() < gauge->mapToScene({}).y());
    }
};

QUILLBROOK_SUITE(TestMainWindowSidebar, QGuiApplication)
#include "tst_MainWindowSidebar.moc"
