#include "Removal/LedgerFormat.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QDateTime moment(qint64 milliseconds)
{
    return QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC).addMSecs(milliseconds);
}

TrashedItem plainItem()
{
    return { .id = u"0B9A2C1E-5D3F-4A6B-8C7D-112233445566"_s,
        .label = u"Caches \u00B7 pip"_s,
        .originalPath = "/home/someone/.cache/pip/http",
        .trashPath = "/home/someone/.local/share/Trash/files/http",
        .bytes = 4096,
        .movedAt = moment(qint64{ 700'000'000 } * 1000 + 250) };
}

const QByteArray plainJson = R"([{"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566",)"
                             "\"label\":\"Caches \u00B7 pip\","
                             R"("originalPath":"\/home\/someone\/.cache\/pip\/http",)"
                             R"("trashPath":"\/home\/someone\/.local\/share\/Trash\/files\/http",)"
                             R"("bytes":4096,"movedAt":700000000.25}])";

// A row in which one key's value is another, or, where it is empty, the key is missing.
QByteArray jsonWith(const QByteArray &key, const QByteArray &value)
{
    QByteArray row;
    const QList<std::pair<QByteArray, QByteArray>> fields
        = { { "id", R"("A")" }, { "label", R"("l")" }, { "originalPath", R"("/o")" },
              { "trashPath", R"("/t")" }, { "bytes", "1" }, { "movedAt", "0" }, { "byRule", "true" } };
    for (const auto &[name, usual] : fields) {
        const auto written = name == key ? value : usual;
        if (!written.isEmpty())
            row += (row.isEmpty() ? "\"" : ",\"") + name + "\":" + written;
    }
    return "[{" + row + "}]";
}

} // namespace

class TestLedgerFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAreWrittenCompactWithEscapedSlashes()
    {
        QCOMPARE(LedgerFormat::encode({ plainItem() }), plainJson);
    }

    void noRowsAreAnEmptyArray()
    {
        QCOMPARE(LedgerFormat::encode({}), "[]");
        QCOMPARE(LedgerFormat::decode("[]"), std::vector<TrashedItem>());
    }

    void byRuleIsWrittenOnlyWhereItIsThere_data()
    {
        QTest::addColumn<std::optional<bool>>("byRule");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("absent") << std::optional<bool>() << QByteArray();
        QTest::newRow("true") << std::optional(true) << QByteArray(",\"byRule\":true");
        QTest::newRow("false") << std::optional(false) << QByteArray(",\"byRule\":false");
    }
    void byRuleIsWrittenOnlyWhereItIsThere()
    {
        QFETCH(std::optional<bool>, byRule);
        QFETCH(QByteArray, written);
        auto item = plainItem();
        item.byRule = byRule;
        auto expected = plainJson;
        QCOMPARE(LedgerFormat::encode({ item }), expected.insert(expected.size() - 2, written));
        QCOMPARE(LedgerFormat::decode(expected), std::vector{ item });
    }

    void momentsAreSecondsSince2001_data()
    {
        QTest::addColumn<qint64>("milliseconds");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("the first moment") << qint64{ 0 } << QByteArray("0");
        QTest::newRow("whole seconds have no fraction") << qint64{ 86'400'000 } << QByteArray("86400");
        QTest::newRow("a millisecond") << qint64{ 1 } << QByteArray("0.001");
        QTest::newRow("before") << qint64{ -1500 } << QByteArray("-1.5");
        QTest::newRow("1970") << qint64{ -978'307'200'000 } << QByteArray("-978307200");
        QTest::newRow("today's size") << qint64{ 812'345'678'123 } << QByteArray("812345678.123");
    }
    void momentsAreSecondsSince2001()
    {
        QFETCH(qint64, milliseconds);
        QFETCH(QByteArray, written);
        auto item = plainItem();
        item.movedAt = moment(milliseconds);
        const auto json = LedgerFormat::encode({ item });
        QVERIFY2(json.contains("\"movedAt\":" + written + '}'), json);
        QCOMPARE(LedgerFormat::decode(json), std::vector{ item });
    }

    void everyWayToWriteARowIsRead_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("as it is written") << plainJson;
        auto plain = plainJson;
        QTest::newRow("slashes that are not escaped") << plain.replace("\\/", "/");
        auto escaped = plainJson;
        QTest::newRow("letters that are escaped") << escaped.replace("\u00B7", "\\u00b7");
        QTest::newRow("blanks and line feeds")
            << " [ {\n\"byRule\" : null ,"
               "\t\"movedAt\" : 7.0000000025e8, \"bytes\" : 4.096e3, \"extra\" : [{\"a\":[1]}], "
               "\"trashPath\" : \"/home/someone/.local/share/Trash/files/http\", "
               "\"originalPath\" : \"/home/someone/.cache/pip/http\", "
               "\"label\" : \"Caches \u00B7 pip\", "
               "\"id\" : \"0B9A2C1E-5D3F-4A6B-8C7D-112233445566\" } ]\r\n "_ba;
        QTest::newRow("a byte order mark") << "\xEF\xBB\xBF" + plainJson;
        auto finer = plainJson;
        QTest::newRow("a moment that is finer than a millisecond")
            << finer.replace("700000000.25", "700000000.2500004");
    }
    void everyWayToWriteARowIsRead()
    {
        QFETCH(QByteArray, json);
        QCOMPARE(LedgerFormat::decode(json), std::vector{ plainItem() });
    }

    void whatIsNoLedgerIsNotRead_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("zero bytes") << QByteArray(64, '\0');
        QTest::newRow("half of it") << plainJson.first(plainJson.size() / 2);
        QTest::newRow("something behind it") << plainJson + "x";
        QTest::newRow("two of it") << plainJson + plainJson;
        QTest::newRow("one row") << plainJson.sliced(1).chopped(1);
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("a text") << QByteArray("\"text\"");
        QTest::newRow("a row that is none") << QByteArray("[null]");
        QTest::newRow("a good row and a bad one") << plainJson.chopped(1) + ",{}]";
        QTest::newRow("text that is not UTF-8") << jsonWith("label", "\"\xFF\"");
        QTest::newRow("half a surrogate pair") << jsonWith("label", R"("\ud800")");
        QTest::newRow("a line feed in a text") << jsonWith("label", "\"a\nb\"");
        QTest::newRow("arrays in arrays") << QByteArray(200'000, '[');
        for (const auto *key : { "id", "label", "originalPath", "trashPath", "bytes", "movedAt" }) {
            QTest::addRow("%s is missing", key) << jsonWith(key, {});
            QTest::addRow("%s is null", key) << jsonWith(key, "null");
            QTest::addRow("%s is a list", key) << jsonWith(key, "[]");
        }
        for (const auto *key : { "id", "label", "originalPath", "trashPath", "byRule" })
            QTest::addRow("%s is a number", key) << jsonWith(key, "1");
        for (const auto *key : { "bytes", "movedAt", "byRule" })
            QTest::addRow("%s is a text", key) << jsonWith(key, "\"1\"");
        for (const auto *key : { "bytes", "movedAt" }) {
            QTest::addRow("%s is true", key) << jsonWith(key, "true");
            QTest::addRow("%s is beyond numbers", key) << jsonWith(key, "1e400");
        }
        QTest::newRow("bytes with a fraction") << jsonWith("bytes", "1.5");
        QTest::newRow("bytes beyond the range") << jsonWith("bytes", "9223372036854775808");
        QTest::newRow("bytes beyond the range with a point") << jsonWith("bytes", "9223372036854775808.0");
        QTest::newRow("bytes below the range") << jsonWith("bytes", "-9223372036854775809");
    }
    void whatIsNoLedgerIsNotRead()
    {
        QFETCH(QByteArray, json);
        QVERIFY(!LedgerFormat::decode(json));
    }

    void sizesUpToTheEndsOfTheRangeAreRead_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<qint64>("bytes");
        QTest::newRow("largest") << QByteArray("9223372036854775807") << std::numeric_limits<qint64>::max();
        QTest::newRow("least") << QByteArray("-9223372036854775808") << std::numeric_limits<qint64>::min();
        QTest::newRow("beyond what a double keeps")
            << QByteArray("9007199254740993") << qint64{ 9'007'199'254'740'993 };
        QTest::newRow("with a point") << QByteArray("5.0") << qint64{ 5 };
    }
    void sizesUpToTheEndsOfTheRangeAreRead()
    {
        QFETCH(QByteArray, written);
        QFETCH(qint64, bytes);
        const auto read = LedgerFormat::decode(jsonWith("bytes", written));
        QVERIFY(read);
        QCOMPARE(read->at(0).bytes, bytes);
        QCOMPARE(LedgerFormat::decode(LedgerFormat::encode(*read)), read);
    }

    void momentsBeyondAllTimeStayInOrder()
    {
        const auto early = LedgerFormat::decode(jsonWith("movedAt", "-1e300"));
        const auto late = LedgerFormat::decode(jsonWith("movedAt", "1e300"));
        QVERIFY(early && late);
        QVERIFY(early->at(0).movedAt.isValid() && late->at(0).movedAt.isValid());
        QVERIFY(early->at(0).movedAt < moment(0) && moment(0) < late->at(0).movedAt);
        QCOMPARE(LedgerFormat::decode(LedgerFormat::encode(*late)), late);
    }

    void pathsThatAreTextAreWrittenAsThatText_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("a line feed") << "/a\nb"_ba
                                     << "\"\\/a\\nb\""_ba;
        QTest::newRow("a tab, a quote, a backslash") << "/a\t\"\\"_ba
                                                     << "\"\\/a\\t\\\"\\\\\""_ba;
        QTest::newRow("control characters") << "/\x01\x1f\x7f"_ba
                                            << "\"\\/\\u0001\\u001f\x7f\""_ba;
        QTest::newRow("letters beyond ASCII") << "/Caf\u00E9 \u65E5"_ba
                                              << "\"\\/Caf\u00E9 \u65E5\""_ba;
        QTest::newRow("a letter made of two") << "/Cafe\u0301"_ba
                                              << "\"\\/Cafe\u0301\""_ba;
        QTest::newRow("beyond the first plane") << "/\U0001F5D1"_ba
                                                << "\"\\/\U0001F5D1\""_ba;
        QTest::newRow("the sign of a repair") << "/\uFFFD"_ba
                                              << "\"\\/\uFFFD\""_ba;
        QTest::newRow("a byte order mark") << "/\uFEFFa"_ba
                                           << "\"\\/\uFEFFa\""_ba;
    }
    void pathsThatAreTextAreWrittenAsThatText()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, written);
        auto item = plainItem();
        item.originalPath = path.toStdString();
        item.trashPath = path.toStdString();
        const auto json = LedgerFormat::encode({ item });
        QVERIFY2(
            json.contains("\"originalPath\":" + written + ",\"trashPath\":" + written + ",\"bytes\":"), json);
        QCOMPARE(LedgerFormat::decode(json), std::vector{ item });
    }

    void pathsThatAreNoTextComeBackByteForByte_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("a byte of no letter") << "/a\xFF"_ba;
        QTest::newRow("another one") << "/a\xFE"_ba;
        QTest::newRow("half a letter") << "/\xE2\x82"_ba;
        QTest::newRow("an overlong slash") << "/\xC0\xAF"_ba;
        QTest::newRow("a surrogate") << "/\xED\xA0\x80"_ba;
        QTest::newRow("Latin-1 with a line feed") << "/Caf\xE9\n/b"_ba;
        QTest::newRow("beside the sign of a repair") << "/\uFFFD\xFF"_ba;
    }
    void pathsThatAreNoTextComeBackByteForByte()
    {
        QFETCH(QByteArray, path);
        auto original = plainItem();
        original.originalPath = path.toStdString();
        auto trashed = plainItem();
        trashed.trashPath = path.toStdString();
        const auto json = LedgerFormat::encode({ original, trashed });
        QVERIFY2(QUtf8StringView(json).isValidUtf8(), json);
        QCOMPARE(json.count("PathBytes"), 2);
        QCOMPARE(LedgerFormat::decode(json), std::vector({ original, trashed }));
    }

    void bytesCountOnlyForTheTextBesideThem_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("those of the text") << "\"L2H/\""_ba
                                           << "/a\xFF"_ba;
        QTest::newRow("those of another") << "\"L2L/\""_ba
                                          << "/a\uFFFD"_ba;
        QTest::newRow("no base64") << "\"L2H/*\""_ba
                                   << "/a\uFFFD"_ba;
        QTest::newRow("empty") << "\"\""_ba
                               << "/a\uFFFD"_ba;
        QTest::newRow("no text") << "7"_ba
                                 << "/a\uFFFD"_ba;
    }
    void bytesCountOnlyForTheTextBesideThem()
    {
        QFETCH(QByteArray, bytes);
        const auto read
            = LedgerFormat::decode(jsonWith("trashPath", "\"/a\uFFFD\",\"trashPathBytes\":" + bytes));
        QVERIFY(read);
        QTEST(QByteArray::fromStdString(read->at(0).trashPath), "path");
    }

    void theOrderOfRowsIsKept()
    {
        auto second = plainItem();
        second.id = u"A"_s;
        const std::vector rows{ second, plainItem(), second };
        QCOMPARE(LedgerFormat::decode(LedgerFormat::encode(rows)), rows);
    }
};

QUILLBROOK_SUITE(TestLedgerFormat, QCoreApplication)
#include "tst_LedgerFormat.moc"
