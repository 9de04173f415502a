#include "Automation/WatcherSettingsFormat.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestWatcherSettingsFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultsAreWrittenByTheirNames()
    {
        QCOMPARE(WatcherSettingsFormat::toJson({}),
            QByteArray("{\"lowSpaceBytes\":21474836480,\"minimumWorthMentioning\":2147483648,"
                       "\"interval\":1800.0,\"quietPeriod\":21600.0,\"enabled\":false}"));
    }

    void settingsComeBack()
    {
        const Watcher::Settings settings{ .lowSpaceBytes = 9223372036854775807,
            .minimumWorthMentioning = -1,
            .interval = 0.125,
            .quietPeriod = 1e300,
            .enabled = true };
        QVERIFY(WatcherSettingsFormat::fromJson(WatcherSettingsFormat::toJson(settings)) == settings);
        QVERIFY(WatcherSettingsFormat::fromJson(WatcherSettingsFormat::toJson({})) == Watcher::Settings());
    }

    void orderAndUnknownKeysDoNotMatter()
    {
        const auto read = WatcherSettingsFormat::fromJson(
            R"({ "enabled": true, "more": [1], "quietPeriod": 4, "interval": 3, "minimumWorthMentioning": 2.0,
                 "lowSpaceBytes": 1 })");
        const Watcher::Settings expected{
            .lowSpaceBytes = 1, .minimumWorthMentioning = 2, .interval = 3, .quietPeriod = 4, .enabled = true
        };
        QVERIFY(read == expected);
    }

    void anythingElseIsAbsent_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("settings");
        QTest::newRow("a list") << QByteArray("[]");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("an empty object") << QByteArray("{}");
        const QByteArray whole = WatcherSettingsFormat::toJson({});
        QTest::newRow("cut off") << whole.chopped(1);
        QTest::newRow("more behind it") << whole + "x";
        QTest::newRow("no enabled") << QByteArray(whole).replace("enabled", "disabled");
        QTest::newRow("a number for enabled") << QByteArray(whole).replace("false", "0");
        QTest::newRow("null for enabled") << QByteArray(whole).replace("false", "null");
        QTest::newRow("no interval") << QByteArray(whole).replace("interval", "pause");
        QTest::newRow("a text for an interval") << QByteArray(whole).replace("1800.0", "\"1800\"");
        QTest::newRow("part of a byte") << QByteArray(whole).replace("2147483648", "2147483648.5");
        QTest::newRow("too many bytes") << QByteArray(whole).replace("21474836480", "9223372036854775808");
        QTest::newRow("no low space") << QByteArray(whole).replace("lowSpaceBytes", "low");
    }
    void anythingElseIsAbsent()
    {
        QFETCH(QByteArray, json);
        QVERIFY(!WatcherSettingsFormat::fromJson(json));
    }
};

QUILLBROOK_SUITE(TestWatcherSettingsFormat, NoApplication)
#include "tst_WatcherSettingsFormat.moc"
