#include "Core/Background.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QPromise>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto wantedKey = u"Quillbrook.notificationsWanted"_s;

/// A desktop that takes its time: each question waits until the test answers it.
class SlowNotifier final : public Notifier
{
public:
    void post(const QString & /*title*/, const QString & /*body*/) override { }
    QFuture<void> requestAuthorisation() override { return QtFuture::makeReadyFuture(); }
    QFuture<NotificationState> state() override
    {
        questions.push_back(std::make_unique<QPromise<NotificationState>>());
        questions.back()->start();
        return questions.back()->future();
    }
    void openSettings() override { }

    void answer(size_t question, NotificationState state)
    {
        questions.at(question)->addResult(state);
        questions.at(question)->finish();
    }

    std::vector<std::unique_ptr<QPromise<NotificationState>>> questions;
};

class SlowLoginItem final : public LoginItem
{
public:
    SlowLoginItem() { promise.start(); }
    bool isEnabled() const override { return enabled; }
    QFuture<std::expected<void, QString>> setEnabled(bool /*wanted*/) override { return promise.future(); }

    bool enabled = false;
    QPromise<std::expected<void, QString>> promise;
};

AppServices withNotifier(const FakeServices &machine, Notifier &notifier, LoginItem &loginItem)
{
    const auto &given = machine.services;
    return { .kit = given.kit,
        .revealer = given.revealer,
        .notifier = notifier,
        .loginItem = loginItem,
        .links = given.links,
        .folderPicker = given.folderPicker,
        .folderGrants = given.folderGrants,
        .driveChanges = given.driveChanges,
        .languageModel = given.languageModel,
        .photos = given.photos };
}

} // namespace

class TestBackground : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notificationsStayWantedOnAFirstLaunch()
    {
        FakeServices machine;
        const Background background(machine.services);
        QVERIFY(background.notificationsWanted());
        QVERIFY(!machine.defaults.values.contains(wantedKey));
    }

    void storedWishIsTaken_data()
    {
        QTest::addColumn<bool>("stored");
        QTest::newRow("wanted") << true;
        QTest::newRow("not wanted") << false;
    }
    void storedWishIsTaken()
    {
        QFETCH(bool, stored);
        FakeServices machine;
        machine.defaults.setBoolean(wantedKey, stored);
        const Background background(machine.services);
        QCOMPARE(background.notificationsWanted(), stored);
    }

    void wishOfAnotherTypeIsNone()
    {
        FakeServices machine;
        machine.defaults.values.insert(wantedKey, u"perhaps"_s);
        const Background background(machine.services);
        QVERIFY(background.notificationsWanted());
    }

    void wishIsWrittenAtEachChange()
    {
        FakeServices machine;
        Background background(machine.services);
        QSignalSpy changes(&background, &Background::notificationsWantedChanged);
        background.setNotificationsWanted(true);
        QVERIFY(!machine.defaults.values.contains(wantedKey));
        background.setNotificationsWanted(false);
        QCOMPARE(machine.defaults.values.value(wantedKey), QVariant(false));
        QVERIFY(!background.notificationsWanted());
        background.setNotificationsWanted(true);
        QCOMPARE(machine.defaults.values.value(wantedKey), QVariant(true));
        QCOMPARE(changes.count(), 2);
        const Background afterARestart(machine.services);
        QVERIFY(afterARestart.notificationsWanted());
    }

    void bothAreReadAtTheStart_data()
    {
        QTest::addColumn<NotificationState>("state");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("not asked") << NotificationState::notAsked << false;
        QTest::newRow("allowed") << NotificationState::allowed << true;
        QTest::newRow("denied") << NotificationState::denied << true;
    }
    void bothAreReadAtTheStart()
    {
        QFETCH(NotificationState, state);
        QFETCH(bool, enabled);
        FakeServices machine;
        machine.desktop.notifier.current = state;
        machine.desktop.loginItem.enabled = enabled;
        const Background background(machine.services);
        QTRY_COMPARE(background.notificationState(), state);
        QCOMPARE(background.launchesAtLogin(), enabled);
        QCOMPARE(machine.desktop.notifier.questions, 1);
        QCOMPARE(machine.desktop.notifier.requests, 0);
        QVERIFY(machine.desktop.loginItem.asked.isEmpty());
    }

    void refreshReadsBothAgain()
    {
        FakeServices machine;
        Background background(machine.services);
        QSignalSpy states(&background, &Background::notificationStateChanged);
        QSignalSpy launches(&background, &Background::launchesAtLoginChanged);
        machine.desktop.notifier.current = NotificationState::denied;
        machine.desktop.loginItem.enabled = true;
        QVERIFY(!background.launchesAtLogin());
        background.refresh();
        QTRY_COMPARE(background.notificationState(), NotificationState::denied);
        QVERIFY(background.launchesAtLogin());
        background.refresh();
        QTRY_COMPARE(machine.desktop.notifier.questions, 3);
        QCOMPARE(states.count(), 1);
        QCOMPARE(launches.count(), 1);
    }

    void loginItemIsSwitched()
    {
        FakeServices machine;
        Background background(machine.services);
        QSignalSpy launches(&background, &Background::launchesAtLoginChanged);
        background.setLaunchAtLogin(true);
        QTRY_VERIFY(background.launchesAtLogin());
        background.setLaunchAtLogin(false);
        QTRY_VERIFY(!background.launchesAtLogin());
        QCOMPARE(machine.desktop.loginItem.asked, (QList<bool>{ true, false }));
        QCOMPARE(launches.count(), 2);
        // Each ends in a refresh.
        QCOMPARE(machine.desktop.notifier.questions, 3);
    }

    void whatIsEnabledIsNotRegisteredAgain()
    {
        FakeServices machine;
        Background background(machine.services);
        machine.desktop.loginItem.enabled = true;
        background.setLaunchAtLogin(true);
        QTRY_VERIFY(background.launchesAtLogin());
        QVERIFY(machine.desktop.loginItem.asked.isEmpty());
        QCOMPARE(machine.desktop.notifier.questions, 2);
    }

    void failureGoesToTheLogAndTheSwitchBack_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::newRow("registering") << false;
        QTest::newRow("unregistering") << true;
    }
    void failureGoesToTheLogAndTheSwitchBack()
    {
        QFETCH(bool, enabled);
        FakeServices machine;
        machine.desktop.loginItem.enabled = enabled;
        machine.desktop.loginItem.failure = u"Äh, no: 100% full."_s;
        Background background(machine.services);
        QSignalSpy launches(&background, &Background::launchesAtLoginChanged);
        QTest::ignoreMessage(QtWarningMsg, "Quillbrook: login item change failed — Äh, no: 100% full.");
        background.setLaunchAtLogin(!enabled);
        // The signal comes although nothing changed: the switch stands elsewhere.
        QTRY_COMPARE(launches.count(), 1);
        QCOMPARE(background.launchesAtLogin(), enabled);
        QCOMPARE(machine.desktop.loginItem.asked, QList<bool>{ !enabled });
    }

    void successIsNotLogged()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        FakeServices machine;
        Background background(machine.services);
        background.setLaunchAtLogin(true);
        QTRY_VERIFY(background.launchesAtLogin());
    }

    void nothingIsShownBeforeTheAnswer()
    {
        FakeServices machine;
        SlowNotifier notifier;
        SlowLoginItem loginItem;
        Background background(withNotifier(machine, notifier, loginItem));
        background.setLaunchAtLogin(true);
        QCoreApplication::processEvents();
        QVERIFY(!background.launchesAtLogin());
        QCOMPARE(background.notificationState(), NotificationState::notAsked);
        loginItem.enabled = true;
        loginItem.promise.addResult(std::expected<void, QString>());
        loginItem.promise.finish();
        QTRY_VERIFY(background.launchesAtLogin());
    }

    void laterQuestionCounts()
    {
        FakeServices machine;
        SlowNotifier notifier;
        SlowLoginItem loginItem;
        Background background(withNotifier(machine, notifier, loginItem));
        background.refresh();
        QCOMPARE(notifier.questions.size(), 2U);
        notifier.answer(1, NotificationState::allowed);
        QTRY_COMPARE(background.notificationState(), NotificationState::allowed);
        notifier.answer(0, NotificationState::denied);
        QTest::qWait(0);
        QCoreApplication::processEvents();
        QCOMPARE(background.notificationState(), NotificationState::allowed);
    }

    void backgroundMayGoBeforeTheAnswers()
    {
        FakeServices machine;
        SlowNotifier notifier;
        SlowLoginItem loginItem;
        auto background = std::make_unique<Background>(withNotifier(machine, notifier, loginItem));
        background->setLaunchAtLogin(true);
        background.reset();
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        notifier.answer(0, NotificationState::denied);
        loginItem.promise.addResult(std::unexpected(u"too late"_s));
        loginItem.promise.finish();
        QCoreApplication::processEvents();
        QCOMPARE(notifier.questions.size(), 1U);
    }

    void answerThatNeverComesChangesNothing()
    {
        FakeServices machine;
        SlowNotifier notifier;
        SlowLoginItem loginItem;
        const Background background(withNotifier(machine, notifier, loginItem));
        notifier.questions.clear();
        QCoreApplication::processEvents();
        QCOMPARE(background.notificationState(), NotificationState::notAsked);
    }
};

QUILLBROOK_SUITE(TestBackground, QCoreApplication)
#include "tst_Background.moc"
