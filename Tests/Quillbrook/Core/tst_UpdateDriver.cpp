#include "Core/AppModel.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto key = u"Quillbrook.updateCheckedAt"_s;

HttpAnswer newer(const QByteArray &version = "1.1")
{
    return { .status = 200,
        .body = R"({"version":")" + version + R"(","url":"https:\/\/updates.test/get","notes":"Faster"})" };
}

} // namespace

class TestUpdateDriver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newerVersionIsTold()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const QSignalSpy updates(&model.updates(), &UpdateDriver::updateChanged);
        QVERIFY(!model.updates().update());
        fake.desktop.http.answer = newer();
        model.updates().checkForUpdate();
        QTRY_COMPARE(updates.count(), 1);
        const AvailableUpdate expected{
            .version = u"1.1"_s, .url = QUrl(u"https://updates.test/get"_s), .notes = u"Faster"_s
        };
        QVERIFY(model.updates().update() == expected);
        QCOMPARE(fake.defaults.values.value(key).toDateTime(), fake.clock.moment);
    }

    void asksTheFeedOfTheServices()
    {
        FakeServices fake;
        AppModel model(fake.services);
        model.updates().checkForUpdate();
        QTRY_COMPARE(fake.desktop.http.requests.size(), 1);
        QCOMPARE(fake.desktop.http.requests.first().url, QUrl(u"https://updates.test/version.json"_s));
    }

    void versionThatIsUnknownCountsAsNone()
    {
        FakeServices fake;
        fake.services.version.clear();
        AppModel model(fake.services);
        fake.desktop.http.answer = newer("0.0.1");
        model.updates().checkForUpdate();
        QTRY_VERIFY(model.updates().update());
        fake.desktop.http.answer = newer("0.0");
        model.updates().checkForUpdate();
        QTRY_VERIFY(!model.updates().update());
    }

    void asksAgainAfterADay_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("asks");
        const auto now = FakeClock().moment;
        QTest::newRow("never asked") << QVariant() << true;
        QTest::newRow("two hours ago") << QVariant(now.addSecs(-7200)) << false;
        QTest::newRow("a moment less than a day") << QVariant(now.addMSecs(-86'399'999)) << false;
        QTest::newRow("a day ago") << QVariant(now.addSecs(-86'400)) << true;
        QTest::newRow("long ago") << QVariant(now.addYears(-1)) << true;
        QTest::newRow("in the future") << QVariant(now.addYears(1)) << false;
        QTest::newRow("no date") << QVariant(u"yesterday"_s) << true;
    }

    void asksAgainAfterADay()
    {
        QFETCH(QVariant, stored);
        QFETCH(bool, asks);
        FakeServices fake;
        if (stored.isValid())
            fake.defaults.values.insert(key, stored);
        AppModel model(fake.services);
        model.updates().checkForUpdate();
        QCoreApplication::processEvents();
        QCOMPARE(fake.desktop.http.requests.size(), asks ? 1 : 0);
        QCOMPARE(fake.defaults.values.value(key), asks ? QVariant(fake.clock.moment) : stored);
    }

    void asksAgainWithANoticeOnHand()
    {
        FakeServices fake;
        AppModel model(fake.services);
        fake.desktop.http.answer = newer("1.1");
        model.updates().checkForUpdate();
        QTRY_VERIFY(model.updates().update());
        fake.clock.moment = fake.clock.moment.addSecs(7200);
        fake.desktop.http.answer = newer("1.2");
        model.updates().checkForUpdate();
        QTRY_COMPARE(model.updates().update()->version, u"1.2"_s);
        QCOMPARE(fake.desktop.http.requests.size(), 2);
        QCOMPARE(fake.defaults.values.value(key).toDateTime(), fake.clock.moment);
    }

    void failedQueryCounts()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const QSignalSpy updates(&model.updates(), &UpdateDriver::updateChanged);
        model.updates().checkForUpdate();
        QTRY_COMPARE(fake.defaults.values.value(key).toDateTime(), fake.clock.moment);
        fake.desktop.http.answer = newer();
        model.updates().checkForUpdate();
        QCoreApplication::processEvents();
        QCOMPARE(fake.desktop.http.requests.size(), 1);
        QVERIFY(!model.updates().update());
        QCOMPARE(updates.count(), 0);
    }

    void failedQueryClearsANotice()
    {
        FakeServices fake;
        AppModel model(fake.services);
        fake.desktop.http.answer = newer();
        model.updates().checkForUpdate();
        QTRY_VERIFY(model.updates().update());
        fake.desktop.http.answer = HttpAnswer{ .status = 500 };
        const QSignalSpy updates(&model.updates(), &UpdateDriver::updateChanged);
        model.updates().checkForUpdate();
        QTRY_VERIFY(!model.updates().update());
        QCOMPARE(updates.count(), 1);
    }

    void sameNoticeIsToldOnce()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const QSignalSpy updates(&model.updates(), &UpdateDriver::updateChanged);
        fake.desktop.http.answer = newer();
        model.updates().checkForUpdate();
        QTRY_COMPARE(updates.count(), 1);
        model.updates().checkForUpdate();
        QTRY_COMPARE(fake.desktop.http.requests.size(), 2);
        QCoreApplication::processEvents();
        QCOMPARE(updates.count(), 1);
    }

    void answerComesLater()
    {
        FakeServices fake;
        fake.desktop.http.isSlow = true;
        AppModel model(fake.services);
        model.updates().checkForUpdate();
        QCoreApplication::processEvents();
        QVERIFY(!model.updates().update());
        QVERIFY(!fake.defaults.values.contains(key));
        fake.clock.moment = fake.clock.moment.addSecs(30);
        fake.desktop.http.answer = newer();
        fake.desktop.http.release();
        QTRY_VERIFY(model.updates().update());
        QCOMPARE(fake.defaults.values.value(key).toDateTime(), fake.clock.moment);
    }

    void modelThatIsGoneTakesNoAnswer()
    {
        FakeServices fake;
        fake.desktop.http.isSlow = true;
        auto model = std::make_unique<AppModel>(fake.services);
        model->updates().checkForUpdate();
        QCoreApplication::processEvents();
        model.reset();
        fake.desktop.http.answer = newer();
        fake.desktop.http.release();
        QCoreApplication::processEvents();
        QVERIFY(!fake.defaults.values.contains(key));
    }

    void feedThatCanNotExistIsNotAsked()
    {
        FakeServices fake;
        fake.services.updateFeed = QUrl(u"https://quillbrook.example/version.json"_s);
        AppModel model(fake.services);
        fake.desktop.http.answer = newer();
        model.updates().checkForUpdate();
        QTRY_VERIFY(fake.defaults.values.contains(key));
        QVERIFY(fake.desktop.http.requests.isEmpty());
        QVERIFY(!model.updates().update());
    }
};

QUILLBROOK_SUITE(TestUpdateDriver, QCoreApplication)
#include "tst_UpdateDriver.moc"
