#include "Automation/RulesFormat.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

AutomationRule fired()
{
    return { .id = u"0B9A2C1E-5D3F-4A6B-8C7D-112233445566"_s,
        .ruleId = u"npm.cacache"_s,
        .path = u"/home/someone/.npm/_cacache"_s,
        .triggerUsedPercent = 90,
        .cadence = Cadence::once,
        .enabled = false,
        .lastFiredAt = QDateTime(QDate(2001, 1, 2), QTime(0, 0, 0, 250), Qt::UTC),
        .timesFired = 1 };
}

const QByteArray firedJson = R"([{"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566","ruleID":"npm.cacache",)"
                             R"("path":"\/home\/someone\/.npm\/_cacache","triggerUsedPercent":90,)"
                             R"("cadence":"once","enabled":false,"lastFiredAt":86400.25,"timesFired":1}])";

} // namespace

class TestRulesFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rulesAreWrittenInTheirOrderOfKeys()
    {
        QCOMPARE(RulesFormat::encode({ fired() }), firedJson);
        QCOMPARE(RulesFormat::decode(firedJson), std::optional(QList{ fired() }));
        QCOMPARE(RulesFormat::encode({}), "[]");
    }

    void whatNeverFiredHasNoDate()
    {
        auto rule = fired();
        rule.lastFiredAt.reset();
        rule.triggerUsedPercent = 92.5;
        rule.cadence = Cadence::everyTime;
        const auto json = RulesFormat::encode({ rule });
        QVERIFY2(!json.contains("lastFiredAt"), json);
        QVERIFY2(json.contains(R"("triggerUsedPercent":92.5,"cadence":"everyTime")"), json);
        QCOMPARE(RulesFormat::decode(json), std::optional(QList{ rule }));
    }

    void everyWayToWriteARuleIsRead_data()
    {
        QTest::addColumn<QByteArray>("json");
        auto json = firedJson;
        QTest::newRow("slashes that are not escaped") << json.replace("\\/", "/");
        json = firedJson;
        QTest::newRow("small letters in the id") << json.replace("0B9A2C1E-5D3F", "0b9a2c1e-5d3f");
        json = firedJson;
        QTest::newRow("blanks and further keys")
            << " " + json.replace("{\"id\"", "\n{\"more\" : [{}], \"id\"");
        json = firedJson;
        QTest::newRow("a fraction of nothing") << json.replace(":90,", ":9.0e1,").replace(":1}", ":1.0}");
    }
    void everyWayToWriteARuleIsRead()
    {
        QFETCH(QByteArray, json);
        QCOMPARE(RulesFormat::decode(json), std::optional(QList{ fired() }));
    }

    void oneBadEntryIsAWholeBadFile_data()
    {
        QTest::addColumn<QByteArray>("entry");
        const auto entry = firedJson.sliced(1).chopped(1);
        const auto with = [&entry](const char *old, const char *instead) {
            return QByteArray(entry).replace(old, instead);
        };
        QTest::newRow("no object") << "7"_ba;
        for (const auto *key :
            { "id", "ruleID", "path", "triggerUsedPercent", "cadence", "enabled", "timesFired" })
            QTest::newRow(key) << with(("\"" + QByteArray(key) + "\"").constData(), "\"other\"");
        QTest::newRow("an id that is none") << with("0B9A2C1E-", "0B9A2C1E");
        QTest::newRow("an id in braces")
            << with("0B9A2C1E-5D3F-4A6B-8C7D-112233445566", "{0B9A2C1E-5D3F-4A6B-8C7D-112233445566}");
        QTest::newRow("an unknown cadence") << with("once", "twice");
        QTest::newRow("a number for enabled") << with("false", "0");
        QTest::newRow("a text for a trigger") << with(":90,", ":\"90\",");
        QTest::newRow("no number for a trigger") << with(":90,", ":NaN,");
        QTest::newRow("an endless trigger") << with(":90,", ":1e999,");
        QTest::newRow("a text for a date") << with("86400.25", "\"yesterday\"");
        QTest::newRow("half a firing") << with(":1}", ":1.5}");
        QTest::newRow("too many firings") << with(":1}", ":9223372036854775808}");
        QTest::newRow("a path that is no text") << with("_cacache", "\xff");
    }
    void oneBadEntryIsAWholeBadFile()
    {
        QFETCH(QByteArray, entry);
        const auto good = firedJson.sliced(1).chopped(1);
        QVERIFY(RulesFormat::decode("[" + good + "]"));
        QVERIFY(!RulesFormat::decode("[" + good + "," + entry + "]"));
    }

    void whatIsNoArrayIsNoFile_data()
    {
        QTest::addColumn<QByteArray>("json");
        for (const auto *json : { "", "null", "{}", "7", "[", "[]x", "\xff" })
            QTest::newRow(json) << QByteArray(json);
    }
    void whatIsNoArrayIsNoFile()
    {
        QFETCH(QByteArray, json);
        QVERIFY(!RulesFormat::decode(json));
        QVERIFY(!RulesFormat::decodePresets(json));
    }

    void presetsAreSortedTexts()
    {
        const QSet<QString> ids{ u"preset.xcode"_s, u"preset.browsers"_s };
        QCOMPARE(RulesFormat::encodePresets(ids), R"(["preset.browsers","preset.xcode"])");
        QCOMPARE(RulesFormat::decodePresets(RulesFormat::encodePresets(ids)), std::optional(ids));
        QVERIFY(!RulesFormat::decodePresets(R"(["preset.xcode",1])"));
    }

    void summarySaysWhenAndHowOften_data()
    {
        QTest::addColumn<double>("trigger");
        QTest::addColumn<Cadence>("cadence");
        QTest::addColumn<QString>("summary");
        QTest::newRow("whole") << 90.0 << Cadence::everyTime
                               << u"When the disk is 90% full, clear it · every time"_s;
        QTest::newRow("cut") << 95.9 << Cadence::once << u"When the disk is 95% full, clear it · just once"_s;
        QTest::newRow("beyond all numbers")
            << 1e300 << Cadence::once << u"When the disk is 1000000000000000% full, clear it · just once"_s;
        QTest::newRow("none") << std::numeric_limits<double>::quiet_NaN() << Cadence::once
                              << u"When the disk is 0% full, clear it · just once"_s;
    }
    void summarySaysWhenAndHowOften()
    {
        QFETCH(double, trigger);
        QFETCH(Cadence, cadence);
        QTEST((AutomationRule{ .triggerUsedPercent = trigger, .cadence = cadence }).summary(), "summary");
    }
};

QUILLBROOK_SUITE(TestRulesFormat, QCoreApplication)
#include "tst_RulesFormat.moc"
