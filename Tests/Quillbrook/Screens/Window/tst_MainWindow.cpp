// The main window: its screens, their keys, and how it comes and goes.

#include "Support/MainWindowSuite.h"
#include "Support/Suite.h"

#include <QFileInfo>
#include <QQmlComponent>
#include <QTimer>
#include <QTranslator>
#include <QtQml/QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestMainWindow : public MainWindowSuite
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void hasItsTitleAndSizes()
    {
        QCOMPARE(m_window->title(), u"Quillbrook"_s);
        QCOMPARE(m_window->size(), QSize(1260, 820));
        QCOMPARE(m_window->minimumSize(), QSize(1040, 680));
    }

    void scanStartsByItselfAndCanBeStopped()
    {
        QTRY_VERIFY(m_machine->hold.isHolding());
        QVERIFY(showsTheScan());
        QVERIFY(!item(Role::Button, u"Rescan"_s));
        auto *stop = item(Role::Button, u"Stop"_s);
        QVERIFY(stop);

        pressAccessibly(stop);
        QTRY_VERIFY(shows(u"Nothing scanned yet"_s));
        QVERIFY(shows(u"Press Rescan to look at this Mac."_s));
        QVERIFY(item(Role::Button, u"Rescan"_s));
    }

    void finishedScanIsToldAndCanBeRepeated()
    {
        finishScan();
        QVERIFY(shows(m_screens->topBar()->summary()));
        QVERIFY(m_screens->topBar()->summary().startsWith(u"scanned 1 files in "_s));
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*item(Role::Button, u"Rescan"_s)));
        QTRY_COMPARE(m_machine->directories.sessionsMade(), 2);
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
    }

    void everyPaneIsShownByItsFile_data()
    {
        QTest::addColumn<Pane>("pane");
        for (const auto &row : paneTable)
            QTest::newRow(row.title) << row.pane;
    }

    // Those that are not there yet say so.
    void everyPaneIsShownByItsFile()
    {
        QFETCH(Pane, pane);
        finishScan();
        for (const auto chosen : { Pane::photos, pane }) {
            m_screens->content()->setPane(chosen);
            const auto file = QString::fromLatin1(row(chosen).file);
            QTRY_COMPARE(shows(u"Not here yet."_s), file.isEmpty());
            QCOMPARE(shows(title(chosen)) && shows(u"Not here yet."_s), file.isEmpty());
            const auto *shown
                = m_window->findChild<QObject *>(u"right"_s)->property("item").value<QObject *>();
            const auto type = file.isEmpty() ? u"CentredNotice"_s : QFileInfo(file).baseName();
            QVERIFY(QByteArray(shown->metaObject()->className()).startsWith(type.toLatin1()));
        }
    }

    // While the sidebar is walked, and when a scan is through.
    void keyboardStaysWhereItIs()
    {
        finishScan();
        QTest::keyClick(m_window, Qt::Key_Tab);
        for (int row = 0; row < 3; ++row)
            QTest::keyClick(m_window, Qt::Key_Down);
        QCOMPARE(pane(), Pane::search);
        QVERIFY(item(Role::EditableText, u"Search every file name on this Mac"_s));
        QCOMPARE(accessibleName(m_window->activeFocusItem()), u"Find a file"_s);

        auto *ask = item(Role::EditableText, u"Ask Quillbrook anything about this Mac"_s);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*ask));
        m_model->scans().scan({ .scope = Scope::quiet });
        QTRY_VERIFY(showsTheScan());
        QTRY_VERIFY(item(Role::EditableText, u"Search every file name on this Mac"_s));
        QVERIFY(ask->hasActiveFocus());
    }

    void searchTakesTheKeyboardWhenItIsChosen_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("by its key") << true;
        QTest::newRow("by a press") << false;
    }

    void searchTakesTheKeyboardWhenItIsChosen()
    {
        QFETCH(bool, byKey);
        finishScan();
        if (byKey)
            QTest::keyClick(m_window, Qt::Key_4, Qt::ControlModifier);
        else
            QTest::mouseClick(
                m_window, Qt::LeftButton, {}, centreOf(*item(Role::ListItem, u"Find a file"_s)));
        QTRY_VERIFY(m_window->activeFocusItem());
        QCOMPARE(accessibleName(m_window->activeFocusItem()), u"Search every file name on this Mac"_s);
    }

    void ticksStartAnewWhenTheWindowComesBack()
    {
        scanAFinding();
        pressAccessibly(item(Role::CheckBox, u"Android build logs"_s));
        QTRY_VERIFY(shows(u"0 B selected"_s));
        m_window->hide();
        QTest::qWait(0);
        m_window->show();
        QTRY_VERIFY(shows(u"4.0 KB selected"_s));
    }

    void commandDigitsChooseThePane_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("expected");
        for (const auto &row : paneTable)
            QTest::newRow(row.title) << Qt::Key_0 + row.digit << int(row.pane);
    }

    void commandDigitsChooseThePane()
    {
        QFETCH(int, key);
        QFETCH(int, expected);
        QTRY_VERIFY(m_machine->hold.isHolding());
        m_screens->content()->setPane(expected == 0 ? Pane::map : Pane::warden);

        QTest::keyClick(m_window, Qt::Key(key), Qt::ControlModifier);
        QCOMPARE(int(pane()), expected);
        QVERIFY(showsTheScan());
        auto *row = item(Role::ListItem, title(Pane(expected)));
        QVERIFY(row);
        QVERIFY(QAccessible::queryAccessibleInterface(row)->state().selected);
    }

    void arrowKeysWalkTheSidebar()
    {
        QTest::keyClick(m_window, Qt::Key_Tab);
        QTest::keyClick(m_window, Qt::Key_Down);
        QCOMPARE(pane(), Pane::map);
        QCOMPARE(accessibleName(m_window->activeFocusItem()), u"What's using space"_s);
        QTest::keyClick(m_window, Qt::Key_Down);
        QCOMPARE(pane(), Pane::largest);
        QTest::keyClick(m_window, Qt::Key_Up);
        QTest::keyClick(m_window, Qt::Key_Up);
        QTest::keyClick(m_window, Qt::Key_Up);
        QCOMPARE(pane(), Pane::warden);
        QTest::keyClick(m_window, Qt::Key_End);
        QCOMPARE(pane(), Pane::advisor);
        QTest::keyClick(m_window, Qt::Key_Down);
        QCOMPARE(pane(), Pane::advisor);
        QTest::keyClick(m_window, Qt::Key_Home);
        QCOMPARE(pane(), Pane::warden);
    }

    void rowsCanBePressedByPointerAndAccessibly()
    {
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*item(Role::ListItem, u"Apps"_s)));
        QCOMPARE(pane(), Pane::apps);
        pressAccessibly(item(Role::ListItem, u"Find a file"_s));
        QCOMPARE(pane(), Pane::search);
    }

    void tabGoesInReadingOrder()
    {
        QTRY_VERIFY(m_machine->hold.isHolding());
        QStringList reached;
        for (int i = 0; i < 5; ++i) {
            QTest::keyClick(m_window, Qt::Key_Tab);
            reached.append(accessibleName(m_window->activeFocusItem()));
        }
        QCOMPARE(reached,
            QStringList({ u"Free up space"_s, u"Stop"_s, u"What is using the most space?"_s,
                u"Ask Quillbrook anything about this Mac"_s, u"Free up space"_s }));
    }

    void everyLapOfTheTabKeyIsTheSame()
    {
        scanAFinding();
        QVERIFY(shows(u"1 of 1 reclaimable items"_s));
        const QStringList lap{ u"Free up space"_s, u"Rescan"_s, u"Move to Trash"_s,
            u"Android build logs, 4.0 KB"_s, u"Android build logs"_s, u"Where is it?"_s, u"Show"_s };
        for (int i = 0; i < 2; ++i) {
            QStringList reached;
            while (reached.size() < lap.size()) {
                QTest::keyClick(m_window, Qt::Key_Tab);
                reached.append(accessibleName(m_window->activeFocusItem()));
            }
            QCOMPARE(reached, lap);
            for (auto back = lap.size() - 1; back > 0; --back) {
                QTest::keyClick(m_window, Qt::Key_Backtab);
                QCOMPARE(accessibleName(m_window->activeFocusItem()), lap.at(back - 1));
            }
            // On to the end of the lap, and to the sidebar's list again.
            auto *field = item(Role::EditableText, u"Ask Quillbrook anything about this Mac"_s);
            for (int stops = 0; stops < 20 && !field->hasActiveFocus(); ++stops)
                QTest::keyClick(m_window, Qt::Key_Tab);
            QVERIFY(field->hasActiveFocus());
        }
    }

    void linesAreShownFromTheTopUntilTheKeyboardComes()
    {
        m_window->resize(1040, 300);
        scanAFinding();
        const auto *list = m_window->findChild<QQuickItem *>(u"wardenList"_s);
        QTRY_VERIFY(list->property("currentIndex").toInt() > 0);
        const auto top = list->property("originY").toReal() - list->property("topMargin").toReal();
        QCOMPARE(list->property("contentY").toReal(), top);
        for (int stops = 0; stops < 4; ++stops)
            QTest::keyClick(m_window, Qt::Key_Tab);
        QCOMPARE(accessibleName(m_window->activeFocusItem()), u"Android build logs, 4.0 KB"_s);
        QVERIFY(list->property("contentY").toReal() > top);
    }

    void findingsAreListedAndCleared()
    {
        scanAFinding();
        QVERIFY(shows(u"1 of 1 reclaimable items"_s));
        QVERIFY(item(Role::ListItem, u"Android build logs, 4.0 KB"_s));
        QVERIFY(item(Role::Heading, u"Safe to remove, 4.0 KB"_s));

        auto *box = item(Role::CheckBox, u"Android build logs"_s);
        QVERIFY(box && box->property("checked").toBool());
        pressAccessibly(box);
        QTRY_VERIFY(shows(u"0 B selected"_s));
        QVERIFY(!box->property("checked").toBool());
        QVERIFY(!item(Role::Button, u"Move to Trash"_s)->isEnabled());
        pressAccessibly(box);

        pressAccessibly(item(Role::Button, u"Move to Trash"_s));
        QTRY_VERIFY(shows(u"Move 4.0 KB to the Trash?"_s));
        QTRY_COMPARE(accessibleName(m_window->activeFocusItem()), u"Cancel"_s);
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!shows(u"Move 4.0 KB to the Trash?"_s));
        QVERIFY(m_machine->trash.asked.empty());
        QVERIFY(m_model->reclaims().reclaimLog().isEmpty());

        const auto *list = m_window->findChild<QQuickItem *>(u"wardenList"_s);
        const auto *bar = m_window->findChild<QQuickItem *>(u"wardenScrollBar"_s);
        QVERIFY(bar->mapToScene({}).x() >= list->mapToScene({ list->width(), 0 }).x());
    }

    void questionOpensTheConversation()
    {
        finishScan();
        auto *field = item(Role::EditableText, u"Ask Quillbrook anything about this Mac"_s);
        QVERIFY(field);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*field));
        QVERIFY(field->hasActiveFocus());
        for (const auto key : { Qt::Key_W, Qt::Key_H, Qt::Key_Y })
            QTest::keyClick(m_window, key);
        QCOMPARE(m_screens->askBar()->draft(), u"why"_s);

        QTest::keyClick(m_window, Qt::Key_Return);
        QCOMPARE(pane(), Pane::advisor);
        QCOMPARE(field->property("text").toString(), QString());
        QVERIFY(!field->hasActiveFocus());
        QTRY_VERIFY(item(Role::EditableText, u"Ask about what was found"_s));
        QTRY_COMPARE(accessibleName(item(Role::ListItem, u"why"_s)), u"why"_s);
        QVERIFY(!item(Role::Button, u"Ask"_s)->isEnabled());
    }

    void blankQuestionKeepsThePane()
    {
        auto *field = item(Role::EditableText, u"Ask Quillbrook anything about this Mac"_s);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*field));
        QTest::keyClick(m_window, Qt::Key_Space);
        QTest::keyClick(m_window, Qt::Key_Return);
        QCOMPARE(pane(), Pane::warden);
        QCOMPARE(field->property("text").toString(), u" "_s);
        pressAccessibly(item(Role::Button, u"Ask"_s));
        QCOMPARE(pane(), Pane::warden);
        QVERIFY(field->hasActiveFocus());
    }

    void longerWordsFitEveryScreen_data()
    {
        QTest::addColumn<Pane>("pane");
        for (const auto &row : paneTable)
            QTest::newRow(row.title) << row.pane;
    }

    void longerWordsFitEveryScreen()
    {
        QFETCH(Pane, pane);
        QTranslator language;
        QVERIFY(language.load(QStringLiteral(MADE_UP_LANGUAGE)));
        QCoreApplication::installTranslator(&language);
        m_machine->desktop.photos.access = PhotoAccess::granted;
        m_machine->applications.apps = { { .app = { .name = u"Aurora Studio"_s }, .isMeasured = true } };
        close();
        open();
        finishScan();
        m_screens->content()->setPane(pane);
        m_model->navigation().drillInto(1);
        QVERIFY(m_model->navigation().selection());
        if (pane == Pane::apps)
            QTRY_VERIFY(shows(u"Aurora Studio"_s));
        nothingIsCut(m_window->minimumSize());
    }

    void nothingIsCutAtTheMinimumSize()
    {
        finishScan();
        nothingIsCut(m_window->minimumSize());
    }

    void startChecksRunAgainWhenTheWindowComesBack()
    {
        const auto &questions = m_machine->desktop.notifier.questions;
        const auto before = questions;
        m_window->hide();
        QTest::qWait(0);
        QCOMPARE(questions, before);
        // Two days later the clock and what listens to the watcher are back, though somebody took them away.
        // The start action does not run again: it would ask for an update by now.
        m_machine->clock.moment = m_machine->clock.moment.addDays(2);
        auto *clock = m_model->findChild<QTimer *>(u"volumeClock"_s);
        clock->stop();
        m_model->watch().watcher().setOnObservation({});
        m_window->show();
        QTRY_COMPARE(questions, before + 1);
        QVERIFY(clock->isActive());
        m_machine->hold.release();
        m_model->watch().watcher().check(true);
        QTRY_VERIFY(m_model->watch().lastWatch());
        QCOMPARE(m_machine->desktop.http.requests.size(), 1);
    }

    void nothingMovesWhereTheDesktopAsksForThat()
    {
        QQmlComponent reader(m_engine.get());
        reader.setData("import QtQml\nimport Quillbrook\nQtObject {\n"
                       "readonly property int quickMotion: Metrics.quickMotion\n"
                       "readonly property int sheetMotion: Metrics.sheetMotion\n}",
            {});
        const std::unique_ptr<QObject> metrics(reader.create());
        QVERIFY2(metrics, qPrintable(reader.errorString()));
        QCOMPARE(metrics->property("quickMotion").toInt(), 120);
        QCOMPARE(metrics->property("sheetMotion").toInt(), 180);
        m_machine->motion.setReduced(true);
        QCOMPARE(metrics->property("quickMotion").toInt(), 0);
        QCOMPARE(metrics->property("sheetMotion").toInt(), 0);
        m_machine->motion.setReduced(false);
        QCOMPARE(metrics->property("quickMotion").toInt(), 120);
    }

private:
    // One of 4 KB that is safe to remove.
    void scanAFinding()
    {
        const std::string place = "/home/someone/.gradle/daemon";
        m_machine->files.entries[place] = {};
        m_machine->directories.folder(place, { FakeDirectories::aFile("log", 4096) });
        m_machine->directories.folder("/home/someone/.gradle", { FakeDirectories::aFolder("daemon") });
        m_machine->directories.folder("/home/someone", { FakeDirectories::aFolder(".gradle") });
        m_model->scans().cancelScan();
        m_machine->hold.release();
        m_model->scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
        QTRY_VERIFY(shows(u"4.0 KB selected"_s));
    }
};

QUILLBROOK_SUITE(TestMainWindow, QGuiApplication)
#include "tst_MainWindow.moc"
