// How the program starts, opens its window and ends.

#include "Support/AppDelegateSuite.h"
#include "Support/Suite.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThreadPool>
#include <QTimer>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestAppDelegate : public AppDelegateSuite
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void backgroundIsAskedForByArgument_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<AppInstance::Start>("expected");
        QTest::newRow("none") << QStringList{ u"quillbrook"_s } << withWindow;
        QTest::newRow("login") << QStringList{ u"quillbrook"_s, u"--background"_s } << inBackground;
        QTest::newRow("another") << QStringList{ u"quillbrook"_s, u"--backgrounds"_s } << withWindow;
    }

    void backgroundIsAskedForByArgument()
    {
        QFETCH(QStringList, arguments);
        QFETCH(AppInstance::Start, expected);
        QCOMPARE(AppDelegate::startOf(arguments), expected);
    }

    void startOpensTheWindow()
    {
        QVERIFY(m_delegate->start(withWindow));
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(m_delegate->mainWindow()->isVisible());
        QCOMPARE(m_delegate->mainWindow()->title(), u"main window"_s);
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
        QCOMPARE(m_tray->appearances.size(), 1);
        QVERIFY(!m_delegate->panel());
    }

    void startInBackgroundOpensNone()
    {
        const auto questions = m_machine->desktop.notifier.questions;
        QVERIFY(m_delegate->start(inBackground));
        QCoreApplication::processEvents();
        QVERIFY(!m_delegate->mainWindow());
        QCOMPARE(windowCount(), 0);
        // What a window would have set going, but for the first scan.
        QCOMPARE(m_machine->desktop.http.requests.size(), 1);
        QTRY_VERIFY(m_model->reclaims().safetyNet());
        QCOMPARE(m_model->scans().phase().kind, Phase::Kind::idle);
        QVERIFY(m_model->findChild<QTimer *>(u"volumeClock"_s)->isActive());
        QVERIFY(m_machine->desktop.notifier.questions > questions);
        QCOMPARE(m_tray->appearances.last(),
            (TrayItem::Appearance{ .title = m_model->volume().menuBarTitle(), .usedShare = 0.75 }));
        QCOMPARE(m_model->volume().menuBarTitle(), u"250 B"_s);
        QVERIFY(!m_model->watch().lastWatch());
        m_model->watch().watcher().check(false);
        QTRY_VERIFY(m_model->watch().lastWatch());
    }

    void windowThatCanNotBeMadeIsTold()
    {
        auto windows = m_windows;
        windows.main = file(u"Broken.qml"_s, "import QtQuick\nWindow { width: }\n");
        make(windows);
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window — .*Broken.qml"_s));
        QVERIFY(!m_delegate->start(withWindow));

        windows.main = file(u"Item.qml"_s, "import QtQuick\nItem {}\n");
        windows.mainProperties.clear();
        make(windows);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Quillbrook: could not make a window"_s));
        QVERIFY(!m_delegate->start(withWindow));
    }

    void closingKeepsTheProgram()
    {
        QVERIFY(m_delegate->start(withWindow));
        // A loop that the last window's end would end.
        QTimer::singleShot(0, this, [this] { m_delegate->mainWindow()->close(); });
        auto lasted = false;
        QTimer::singleShot(100, this, [&lasted] {
            lasted = true;
            QCoreApplication::exit(7);
        });
        QCOMPARE(QCoreApplication::exec(), 7);
        QVERIFY(lasted);
        QVERIFY(!m_delegate->mainWindow());
    }

    void closedWindowIsLetGoAndMadeAgain()
    {
        QVERIFY(m_delegate->start(withWindow));
        const QPointer<QQuickWindow> first = m_delegate->mainWindow();
        first->close();
        QTRY_VERIFY(!first);
        QCOMPARE(windowCount(), 0);
        QVERIFY(!m_delegate->mainWindow());

        Q_EMIT m_tray->openChosen();
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(m_delegate->mainWindow()->isVisible());
        QCOMPARE(m_delegate->mainWindow()->title(), u"main window"_s);
        // Closed and opened in one go, as by a person in a hurry.
        m_delegate->mainWindow()->close();
        Q_EMIT m_tray->openChosen();
        QTRY_COMPARE(windowCount(), 1);
        QVERIFY(m_delegate->mainWindow()->isVisible());
    }

    void secondOpeningRaisesTheSame()
    {
        QVERIFY(m_delegate->start(withWindow));
        const auto *window = m_delegate->mainWindow();
        QWindow other;
        other.show();
        other.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        Q_EMIT m_tray->openChosen();
        QTRY_VERIFY(window->isActive());
        QCOMPARE(m_delegate->mainWindow(), window);
        QCOMPARE(windowCount(), 2);
    }

    void minimisedWindowComesBack()
    {
        QVERIFY(m_delegate->start(withWindow));
        m_delegate->mainWindow()->showMinimized();
        QVERIFY(m_delegate->mainWindow());
        Q_EMIT m_tray->openChosen();
        QVERIFY(!m_delegate->mainWindow()->windowStates().testFlag(Qt::WindowMinimized));
        QTRY_VERIFY(m_delegate->mainWindow()->isActive());
    }

    void otherStartBringsTheWindow()
    {
        QVERIFY(m_delegate->start(inBackground));
        Q_EMIT m_instance->activated({});
        QVERIFY(m_delegate->mainWindow());
        QVERIFY(QTest::qWaitForWindowActive(m_delegate->mainWindow()));
    }

    void tokenGoesToTheWindowSystem()
    {
        QVERIFY(m_delegate->start(inBackground));
        Q_EMIT m_instance->activated("of a start");
        m_tray->token = "of the menu";
        Q_EMIT m_tray->openChosen();
        Q_EMIT m_tray->openChosen();
        m_tray->token = "of the item";
        press();
        QCOMPARE(m_instance->tokens, QList<QByteArray>({ "of a start", "of the menu", "of the item" }));
    }

    void newerVersionIsAskedForDaily_data()
    {
        QTest::addColumn<AppInstance::Start>("start");
        QTest::addColumn<bool>("hasNotice");
        QTest::newRow("in the background") << inBackground << false;
        QTest::newRow("in the background, with a notice") << inBackground << true;
        QTest::newRow("with a window") << withWindow << false;
    }

    void newerVersionIsAskedForDaily()
    {
        QFETCH(AppInstance::Start, start);
        QFETCH(bool, hasNotice);
        if (hasNotice)
            m_machine->desktop.http.answer
                = HttpAnswer{ .status = 200, .body = R"({"version":"9","url":"https:\/\/updates.test/"})" };
        QVERIFY(m_delegate->start(start));
        // As the window's content does it.
        if (start == withWindow)
            m_model->updates().checkForUpdate();
        QTRY_VERIFY(m_machine->defaults.values.contains(u"Quillbrook.updateCheckedAt"_s));
        QCOMPARE(m_model->updates().update().has_value(), hasNotice);
        auto *clock = m_delegate->findChild<QTimer *>(u"updateClock"_s);
        QVERIFY(clock->isActive());
        const auto begin = m_machine->clock.moment;
        for (int hour = 1; hour <= 50; ++hour) {
            m_machine->clock.moment = begin.addSecs(hour * 3600);
            Q_EMIT clock->timeout({});
            QCoreApplication::processEvents();
            QCOMPARE(m_machine->desktop.http.requests.size(), 1 + hour / 24);
        }
    }

    void endingWaitsForTheEntryThatGoes()
    {
        QVERIFY(m_delegate->start(inBackground));
        QSemaphore reached;
        QSemaphore go;
        bool hasStopped = false;
        m_model->removals().enqueue({ .work = [&](const RemovalQueue::Watch &watch) {
            reached.release();
            go.acquire();
            hasStopped = watch.stop.stop_requested();
        } });
        QTRY_VERIFY(reached.available() > 0);
        QTimer::singleShot(0, this, [&] {
            m_delegate->quitNow();
            go.release();
        });
        QTimer::singleShot(20'000, this, [] { QCoreApplication::exit(7); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(hasStopped);
        QVERIFY(!m_model->removals().isBusy());
    }

    void endingDoesNotWaitForEverForACopy()
    {
        m_copyPatience = std::chrono::milliseconds(50);
        make(m_windows);
        QVERIFY(m_delegate->start(inBackground));
        QThreadPool copies;
        QSemaphore reached;
        QSemaphore go;
        const auto work = [&](const auto & /*watch*/) {
            reached.release();
            go.acquire();
        };
        m_model->removals().enqueue({ .copying = &copies, .work = work });
        QTRY_VERIFY(reached.available() > 0);
        QTimer::singleShot(0, m_delegate.get(), &AppDelegate::quitNow);
        QTimer::singleShot(20'000, this, [] { QCoreApplication::exit(7); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(m_model->removals().isBusy());
        go.release();
        QTRY_VERIFY(!m_model->removals().isBusy());
    }

    void quitAsksInTheWindowWhereThereIsSomethingToAsk()
    {
        m_windows.asksBeforeQuitting = [] { return true; };
        make(m_windows);
        QVERIFY(m_delegate->start(inBackground));
        m_delegate->quit();
        QVERIFY(m_delegate->mainWindow());
        QTimer::singleShot(0, m_delegate.get(), &AppDelegate::quitNow);
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    void quitEndsTheLoopWhateverAWindowSays()
    {
        auto windows = m_windows;
        windows.main = file(u"Stubborn.qml"_s,
            "import QtQuick\nWindow { visible: true; onClosing: close => { close.accepted = false } }\n");
        windows.mainProperties.clear();
        make(windows);
        QVERIFY(m_delegate->start(withWindow));
        QTimer::singleShot(0, this, [this] { Q_EMIT m_tray->quitChosen(); });
        QTimer late;
        late.setSingleShot(true);
        connect(&late, &QTimer::timeout, this, [] { QCoreApplication::exit(7); });
        late.start(5000);
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    void windowsGoWithTheDelegate()
    {
        QVERIFY(m_delegate->start(withWindow));
        press();
        QCOMPARE(windowCount(), 2);
        m_delegate.reset();
        QCOMPARE(windowCount(), 0);
    }
};

QUILLBROOK_SUITE(TestAppDelegate, QGuiApplication)
#include "tst_AppDelegate.moc"
