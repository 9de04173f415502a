// The panel in the tray as a person meets it: what can be read, pressed and reached in each of its states.

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Core/FolderAccess.h"
#include "Screens/Panel/MenuBarPanelState.h"
#include "Support/FolderHold.h"
#include "Support/QuickItems.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>

#include <memory>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Role = QAccessible::Role;

namespace {

constexpr qint64 gibi = qint64{ 1024 } * 1024 * 1024;

const auto watchingTitle = u"Keep watching this Mac"_s;
const auto notificationsTitle = u"Tell me when space runs low"_s;
const auto loginTitle = u"Keep watching after I restart"_s;

QStringList *warnings = nullptr;

void keepWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtWarningMsg && warnings)
        warnings->append(message);
}

struct Machine : ScannedHome
{
    Machine()
    {
        addPlace(".gradle/daemon", 30);
        volumes.answer = VolumeCapacity{
            .available = 50 * gibi, .availableForImportantUsage = 50 * gibi, .total = 200 * gibi
        };
        model.watch().configureWatcher(background);
    }

    Background background{ services };
    FolderAccess access{ services };
    MenuBarPanelState panel{ model, background, access };
};

} // namespace

class TestMenuBarPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_warnings.clear();
        warnings = &m_warnings;
        qInstallMessageHandler(keepWarnings);
        QAccessible::setActive(true);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        m_usualFont = QGuiApplication::font();

        m_machine = std::make_unique<Machine>();
        load();
        QTRY_COMPARE(m_machine->model.scans().phase().kind, Phase::Kind::ready);
    }

    void cleanup()
    {
        m_engine.reset();
        m_machine.reset();
        QGuiApplication::setFont(m_usualFont);
        qInstallMessageHandler(nullptr);
        warnings = nullptr;
        QVERIFY2(m_warnings.isEmpty(), qPrintable(m_warnings.join(u'\n')));
    }

    void hasItsTitleSizeAndKind()
    {
        QCOMPARE(m_window->title(), u"Quillbrook"_s);
        QCOMPARE(m_window->width(), 340);
        QCOMPARE(m_window->type(), Qt::Tool);
        QVERIFY(m_window->flags().testFlag(Qt::FramelessWindowHint));
    }

    void tellsWhatIsFreeAndWhatCouldBe()
    {
        QVERIFY(shows(u"50.0 GB"_s));
        QVERIFY(shows(u"free"_s));
        const auto *summary = item(Role::StaticText, u"30.0 MB can be reclaimed safely"_s);
        QVERIFY(summary);
        const auto safe = summary->property("color").value<QColor>();

        FolderHold hold(m_machine->directories, m_machine->path());
        m_machine->model.scans().scan({ .scope = Scope::complete });
        const auto *measuring = item(Role::StaticText, u"Measuring…"_s);
        QVERIFY(measuring);
        QVERIFY(measuring->property("color").value<QColor>() != safe);
        hold.release();
        QTRY_VERIFY(shows(u"30.0 MB can be reclaimed safely"_s));
    }

    void onlyTheFirstSwitchStandsWhileOff()
    {
        QVERIFY(toggle(watchingTitle));
        QVERIFY(!isOn(watchingTitle));
        QVERIFY(shows(m_machine->panel.watchingLine()));
        QVERIFY(!toggle(notificationsTitle));
        QVERIFY(!toggle(loginTitle));
        QVERIFY(!shows(m_machine->panel.notificationsLine()));
        QVERIFY(!shows(m_machine->panel.loginLine()));

        watch();
        QVERIFY(isOn(watchingTitle));
        QVERIFY(shows(u"Last checked today · checks every 30 minutes"_s));
        QVERIFY(isOn(notificationsTitle));
        QVERIFY(shows(u"Alerts are on."_s));
        QVERIFY(!isOn(loginTitle));
        QVERIFY(shows(u"Without this, nothing watches after a restart."_s));
    }

    void switchesDoWhatTheySay()
    {
        press(toggle(watchingTitle));
        QVERIFY(m_machine->model.watch().watching());
        QVERIFY(isOn(watchingTitle));
        QVERIFY(shows(u"Checking shortly…"_s));

        QTRY_VERIFY(toggle(notificationsTitle));
        QTRY_VERIFY(toggle(loginTitle)->y() >= 0);
        pressAccessibly(toggle(notificationsTitle));
        QVERIFY(!m_machine->background.notificationsWanted());
        QVERIFY(!isOn(notificationsTitle));
        pressAccessibly(toggle(loginTitle));
        QTRY_VERIFY(isOn(loginTitle));
        QVERIFY(m_machine->desktop.loginItem.enabled);
        QVERIFY(shows(u"Quillbrook starts with your Mac and sits in the menu bar."_s));

        press(toggle(watchingTitle));
        QVERIFY(!m_machine->model.watch().watching());
        QVERIFY(!toggle(loginTitle));
    }

    void refusedSwitchGoesBack_data()
    {
        QTest::addColumn<bool>("byPointer");
        QTest::newRow("by the pointer") << true;
        QTest::newRow("by the accessibility tree") << false;
    }

    void refusedSwitchGoesBack()
    {
        QFETCH(bool, byPointer);
        watch();
        m_machine->desktop.loginItem.failure = u"no"_s;
        for (int presses = 1; presses <= 2; ++presses) {
            if (byPointer) {
                QTest::qWait(50);
                press(toggle(loginTitle));
            } else {
                pressAccessibly(toggle(loginTitle));
            }
            QCOMPARE(m_machine->desktop.loginItem.asked.size(), presses);
            QVERIFY(m_machine->desktop.loginItem.asked.last());
            QTRY_VERIFY(!isOn(loginTitle));
            QVERIFY(!toggle(loginTitle)->property("checked").toBool());
        }
        QTRY_COMPARE(m_warnings.size(), 2);
        m_warnings.clear();

        // It still follows.
        m_machine->desktop.loginItem.failure.reset();
        pressAccessibly(toggle(loginTitle));
        QTRY_VERIFY(isOn(loginTitle));
    }

    void switchFollowsWhatIsTrueElsewhere()
    {
        watch();
        m_machine->desktop.loginItem.enabled = true;
        m_machine->background.refresh();
        QTRY_VERIFY(isOn(loginTitle));
        m_machine->model.watch().setWatching(false);
        QVERIFY(!isOn(watchingTitle));
    }

    void deniedNotificationsOfferTheSettings()
    {
        watch();
        QVERIFY(!item(Role::Button, u"Open Settings"_s));
        m_machine->desktop.notifier.current = NotificationState::denied;
        m_machine->background.refresh();
        QTRY_VERIFY(item(Role::Button, u"Open Settings"_s));
        QVERIFY(shows(m_machine->panel.notificationsLine()));

        QTest::qWait(50);
        press(item(Role::Button, u"Open Settings"_s));
        QCOMPARE(m_machine->desktop.notifier.settingsOpened, 1);
        press(toggle(notificationsTitle));
        QVERIFY(!m_machine->background.notificationsWanted());
        QVERIFY(item(Role::Button, u"Open Settings"_s));
    }

    void footActs()
    {
        QSignalSpy opens(&m_machine->panel, &MenuBarPanelState::openRequested);
        QSignalSpy quits(&m_machine->panel, &MenuBarPanelState::quitRequested);
        press(item(Role::Button, u"Open"_s));
        QCOMPARE(opens.count(), 1);
        press(item(Role::Button, u"Quit"_s));
        QCOMPARE(quits.count(), 1);

        QVERIFY(!m_machine->model.watch().watcher().lastObservation());
        press(item(Role::Button, u"Check now"_s));
        QVERIFY(m_machine->model.watch().watcher().lastObservation());
    }

    void quitTellsWhatItMeans()
    {
        auto *quit = item(Role::Button, u"Quit"_s);
        const auto description
            = [quit] { return QAccessible::queryAccessibleInterface(quit)->text(QAccessible::Description); };
        const auto tip = [this](const QString &text) {
            for (auto *part : visibleItemsBelow(*m_window->contentItem()))
                if (part->property("text").toString() == text)
                    return part;
            return static_cast<QQuickItem *>(nullptr);
        };
        QCOMPARE(description(), u"Quit Quillbrook."_s);
        QVERIFY(!tip(u"Quit Quillbrook."_s));
        QTest::mouseMove(m_window, centreOf(*quit));
        QTRY_VERIFY(tip(u"Quit Quillbrook."_s));

        watch();
        QCOMPARE(description(), u"Quitting stops Quillbrook watching this Mac."_s);
        // The panel has grown, and the button has moved.
        const auto isUnderThePointer = [&] { return quit->property("hovered").toBool(); };
        QTRY_VERIFY(!isUnderThePointer());
        QTest::mouseMove(m_window, centreOf(*quit));
        QTRY_VERIFY(tip(u"Quitting stops Quillbrook watching this Mac."_s));
        const auto *shown = tip(u"Quitting stops Quillbrook watching this Mac."_s);
        QVERIFY(QRectF(QPointF(), m_window->size()).contains(shown->mapRectToScene(shown->boundingRect())));
        QVERIFY(!shown->property("truncated").toBool());
        QTest::mouseMove(m_window, QPoint(5, 5));
        QTRY_VERIFY(!tip(u"Quitting stops Quillbrook watching this Mac."_s));
    }

    void tabGoesInReadingOrder()
    {
        const auto reached = [this](int count) {
            QStringList names;
            for (int i = 0; i < count; ++i) {
                QTest::keyClick(m_window, Qt::Key_Tab);
                names.append(accessibleName(m_window->activeFocusItem()));
            }
            return names;
        };
        QCOMPARE(
            reached(5), QStringList({ watchingTitle, u"Open"_s, u"Check now"_s, u"Quit"_s, watchingTitle }));
        watch(NotificationState::denied);
        QCOMPARE(reached(7),
            QStringList({ notificationsTitle, u"Open Settings"_s, loginTitle, u"Open"_s, u"Check now"_s,
                u"Quit"_s, watchingTitle }));
    }

    void everySwitchWorksByKey()
    {
        QTest::keyClick(m_window, Qt::Key_Tab);
        QTest::keyClick(m_window, Qt::Key_Space);
        QVERIFY(m_machine->model.watch().watching());
        int rings = 0;
        for (auto *part : visibleItemsBelow(*toggle(watchingTitle)))
            rings += part->objectName() == u"focusRing"_s ? 1 : 0;
        QCOMPARE(rings, 1);

        QTest::keyClick(m_window, Qt::Key_Tab);
        QTest::keyClick(m_window, Qt::Key_Return);
        QVERIFY(!m_machine->background.notificationsWanted());
        QTest::keyClick(m_window, Qt::Key_Tab);
        QTest::keyClick(m_window, Qt::Key_Space);
        QTRY_VERIFY(m_machine->background.launchesAtLogin());
    }

    void escapeCloses()
    {
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!m_window->isVisible());
        m_window->show();
        m_window->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        QTest::keyClick(m_window, Qt::Key_Tab);
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!m_window->isVisible());
    }

    void appearsEachTimeItIsShown()
    {
        const auto *clock = m_machine->panel.findChild<QTimer *>(u"ageClock"_s);
        QVERIFY(clock->isActive());
        m_window->hide();
        QTRY_VERIFY(!clock->isActive());
        m_machine->volumes.answer->available = 40 * gibi;
        QVERIFY(shows(u"50.0 GB"_s));
        m_window->show();
        QTRY_VERIFY(clock->isActive());
        QVERIFY(shows(u"40.0 GB"_s));
    }

    void nothingIsCut_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<bool>("watching");
        QTest::addColumn<NotificationState>("state");
        for (const auto &family :
            { QGuiApplication::font().family(), u"DejaVu Sans"_s, u"DejaVu Sans Mono"_s }) {
            const auto name = family.toUtf8();
            QTest::addRow("off, %s", name.constData()) << family << false << NotificationState::notAsked;
            QTest::addRow("not asked, %s", name.constData()) << family << true << NotificationState::notAsked;
            QTest::addRow("allowed, %s", name.constData()) << family << true << NotificationState::allowed;
            QTest::addRow("denied, %s", name.constData()) << family << true << NotificationState::denied;
        }
    }

    void nothingIsCut()
    {
        QFETCH(QString, family);
        QFETCH(bool, watching);
        QFETCH(NotificationState, state);
        QGuiApplication::setFont(QFont(family));
        m_machine->volumes.answer->available = 1023 * gibi;
        load();
        if (watching)
            watch(state);
        // The layout settles within some frames.
        QTRY_COMPARE(cutTexts(), QStringList());
        QCOMPARE(m_window->width(), 340);
        // The panel is as high as what it shows: between the last line and the foot is the usual room.
        const auto *last = item(
            Role::StaticText, watching ? m_machine->panel.loginLine() : m_machine->panel.watchingLine());
        const auto *open = item(Role::Button, u"Open"_s);
        const auto gap = [&] {
            return open->mapToScene({}).y() - last->mapToScene({ 0, last->height() }).y();
        };
        QTRY_COMPARE_LE(gap(), 24 + 1 + 12 + 1);
        QVERIFY(shows(m_machine->panel.watchingLine()));
        QCOMPARE(shows(m_machine->panel.notificationsLine()), watching);
    }

    void staysAsHighAsWhatItShowsWhereADesktopAnswersLate()
    {
        load();
        const auto off = m_window->height();
        watch(NotificationState::allowed);
        QTRY_VERIFY(m_window->height() > off);
        const auto on = m_window->height();
        // The desktop answers with the height from before, and at last insists.
        for (int answer = 0; answer < 3; ++answer) {
            m_window->setHeight(off);
            QTRY_COMPARE(m_window->height(), on);
        }
        m_window->setHeight(off);
        QTest::qWait(100);
        QCOMPARE(m_window->height(), off);
    }

private:
    [[nodiscard]] QQuickItem *item(Role role, const QString &name) const
    {
        return findAccessible(*m_window->contentItem(), role, name);
    }
    [[nodiscard]] QQuickItem *toggle(const QString &name) const { return item(Role::CheckBox, name); }
    [[nodiscard]] bool isOn(const QString &name) const
    {
        return QAccessible::queryAccessibleInterface(toggle(name))->state().checked;
    }
    [[nodiscard]] bool shows(const QString &text) const { return item(Role::StaticText, text) != nullptr; }
    void press(QQuickItem *control) const
    {
        QVERIFY(control);
        QTest::mouseClick(m_window, Qt::LeftButton, {}, centreOf(*control));
    }
    /// Every text that is not wholly to be read, or stands too near to the window's edge.
    [[nodiscard]] QStringList cutTexts() const
    {
        QStringList texts;
        const auto inside = QRectF(QPointF(), m_window->size()).adjusted(8, 8, -8, -8);
        for (auto *part : visibleItemsBelow(*m_window->contentItem())) {
            const auto text = part->property("text").toString();
            const bool fits = inside.contains(part->mapRectToScene(part->boundingRect()))
                && !part->property("truncated").toBool()
                && part->property("contentWidth").toReal() <= part->width() + 0.5;
            if (!text.isEmpty() && !fits)
                texts.append(text);
        }
        return texts;
    }

    void load()
    {
        m_engine = std::make_unique<QQmlApplicationEngine>();
        m_engine->addImportPath(u"qrc:/qt/qml"_s);
        m_engine->setInitialProperties({ { u"panel"_s, QVariant::fromValue(&m_machine->panel) } });
        m_engine->load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Panel/MenuBarPanel.qml"_s));
        m_window = qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0));
        QVERIFY(m_window);
        QVERIFY(!m_window->isVisible());
        m_window->show();
        m_window->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
    }

    /// Watching, with a reading on hand, and what the desktop says of notifications.
    void watch(NotificationState state = NotificationState::allowed)
    {
        m_machine->desktop.notifier.afterRequest = state;
        m_machine->panel.setWatching(true);
        m_machine->desktop.utility.run();
        QTRY_VERIFY(m_machine->model.watch().lastWatch());
        m_machine->background.refresh();
        QTRY_COMPARE(m_machine->background.notificationState(), state);
    }

    QStringList m_warnings;
    QFont m_usualFont;
    std::unique_ptr<Machine> m_machine;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow *m_window = nullptr;
};

QUILLBROOK_SUITE(TestMenuBarPanel, QGuiApplication)
#include "tst_MenuBarPanel.moc"
