#include "Automation/UpdateCheck.h"
#include "Support/FakeHttpClient.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const QUrl somewhere(u"https://updates.test/version.json"_s);

std::optional<AvailableUpdate> answered(const HttpAnswer &answer, const QString &current = u"1.0"_s)
{
    FakeHttpClient http;
    http.answer = answer;
    return UpdateCheck::check(http, current, somewhere).result();
}

} // namespace

class TestUpdateCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesNumberByNumber_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("than");
        QTest::addColumn<bool>("isNewer");
        QTest::newRow("ten after nine") << u"1.10"_s << u"1.9"_s << true;
        QTest::newRow("nine before ten") << u"1.9"_s << u"1.10"_s << false;
        QTest::newRow("a zero more there") << u"1.9"_s << u"1.9.0"_s << false;
        QTest::newRow("a zero more here") << u"1.2.0"_s << u"1.2"_s << false;
        QTest::newRow("the first number decides") << u"2"_s << u"1.99.99"_s << true;
        QTest::newRow("a part more") << u"1.2.1"_s << u"1.2"_s << true;
        QTest::newRow("equal") << u"1.2.3"_s << u"1.2.3"_s << false;
        QTest::newRow("both empty") << QString() << QString() << false;
        QTest::newRow("only dots") << u"..."_s << QString() << false;
        QTest::newRow("something after nothing") << u"0.1"_s << QString() << true;
        QTest::newRow("empty pieces are dropped") << u"1..2"_s << u"1.2"_s << false;
        QTest::newRow("a dot before") << u".2"_s << u"1.9"_s << true;
        QTest::newRow("a word counts as 0") << u"1.2-beta"_s << u"1.0"_s << false;
        QTest::newRow("a number before a word") << u"1.2-beta"_s << u"1.1"_s << false;
        QTest::newRow("behind a word") << u"1.beta.1"_s << u"1.0.0"_s << true;
        QTest::newRow("leading zeros") << u"1.007"_s << u"1.7"_s << false;
        QTest::newRow("largest") << u"9223372036854775807"_s << u"9223372036854775806"_s << true;
        QTest::newRow("overflow counts as 0") << u"9223372036854775808"_s << u"1"_s << false;
        QTest::newRow("overflow there") << u"1"_s << u"99999999999999999999"_s << true;
        QTest::newRow("plus sign") << u"1.+3"_s << u"1.2"_s << true;
        QTest::newRow("minus sign") << u"1.-3"_s << u"1"_s << false;
        QTest::newRow("less than nothing there") << u"1"_s << u"1.-3"_s << true;
        QTest::newRow("two signs") << u"1.+-3"_s << u"1.0"_s << false;
        QTest::newRow("plus twice") << u"1.++3"_s << u"1.0"_s << false;
        QTest::newRow("sign alone") << u"+"_s << u"0"_s << false;
        QTest::newRow("space before") << u" 2"_s << u"1"_s << false;
        QTest::newRow("space behind") << u"2 "_s << u"1"_s << false;
        QTest::newRow("line end") << u"2\n"_s << u"1"_s << false;
        QTest::newRow("hexadecimal") << u"0x10"_s << u"1"_s << false;
        QTest::newRow("grouped") << u"1,000"_s << u"1"_s << false;
        QTest::newRow("exponent") << u"1e3"_s << u"1"_s << false;
        QTest::newRow("other digits") << u"\u0662"_s << u"1"_s << false;
        QTest::newRow("v before") << u"v2"_s << u"1"_s << false;
    }

    void comparesNumberByNumber()
    {
        QFETCH(QString, version);
        QFETCH(QString, than);
        QFETCH(bool, isNewer);
        QCOMPARE(UpdateCheck::isNewer(version, than), isNewer);
    }

    void feedIsAtItsPathOverTls()
    {
        const auto feed = UpdateCheck::feed();
        QVERIFY(feed.isValid());
        QCOMPARE(feed.scheme(), u"https"_s);
        QVERIFY(!feed.host().isEmpty());
        QCOMPARE(feed.path(), u"/version.json"_s);
        QVERIFY(!feed.hasQuery() && !feed.hasFragment() && feed.userInfo().isEmpty());
    }

    void reservedHostIsNotAsked_data()
    {
        QTest::addColumn<QString>("host");
        for (const auto *host : { "quillbrook.example", "example", "a.b.example", "QUILLBROOK.EXAMPLE",
                 "quillbrook.example.", "updates.invalid", "example.com", "www.example.com", "example.net",
                 "a.example.net", "example.org", "www.example.org." })
            QTest::newRow(host) << QString::fromLatin1(host);
        QTest::newRow("none") << QString();
    }

    void reservedHostIsNotAsked()
    {
        QFETCH(QString, host);
        FakeHttpClient http;
        http.answer
            = HttpAnswer{ .status = 200, .body = R"({"version":"9","url":"https:\/\/updates.test/"})" };
        QUrl feed(somewhere);
        feed.setHost(host);
        const auto answer = UpdateCheck::check(http, u"1.0"_s, feed);
        QVERIFY(answer.isFinished());
        QVERIFY(!answer.result());
        QVERIFY(http.requests.isEmpty());
    }

    void otherHostIsAsked_data()
    {
        QTest::addColumn<QString>("host");
        for (const auto *host : { "updates.test", "myexample.com", "notexample", "example.info",
                 "example.com.test", "example.de", "127.0.0.1" })
            QTest::newRow(host) << QString::fromLatin1(host);
    }

    void otherHostIsAsked()
    {
        QFETCH(QString, host);
        FakeHttpClient http;
        QUrl feed(somewhere);
        feed.setHost(host);
        QVERIFY(!UpdateCheck::check(http, u"1.0"_s, feed).result());
        QCOMPARE(http.requests.size(), 1);
    }

    void questionTellsNothing()
    {
        FakeHttpClient http;
        QVERIFY(!UpdateCheck::check(http, u"1.2.3"_s, somewhere).result());
        QCOMPARE(http.requests.size(), 1);
        const auto &request = http.requests.first();
        QCOMPARE(request.url, somewhere);
        const QList<std::pair<QByteArray, QByteArray>> headers{ { "User-Agent", "Quillbrook" },
            { "Accept-Language", "*" } };
        QCOMPARE(request.headers, headers);
        QCOMPARE(request.silence, std::chrono::milliseconds(10'000));
        QCOMPARE(request.total, std::chrono::milliseconds(60'000));
        QCOMPARE(request.largestBody, qint64(65'536));
    }

    void wholeAnswerIsRead()
    {
        const auto update = answered({ .status = 200,
            .body
            = R"({"size":12,"notes":"Größer","url":"https:\/\/updates.test/get","version":"1.1","more":{}})" });
        const AvailableUpdate expected{
            .version = u"1.1"_s, .url = QUrl(u"https://updates.test/get"_s), .notes = u"Größer"_s
        };
        QVERIFY(update == expected);
    }

    void onlyStatus200Counts_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : { 0, 201, 204, 206, 299, 304, 302, 400, 404, 500 })
            QTest::addRow("%d", status) << status;
    }

    void onlyStatus200Counts()
    {
        QFETCH(int, status);
        const HttpAnswer answer{ .status = status,
            .body = R"({"version":"9","url":"https:\/\/updates.test/"})" };
        QVERIFY(!answered(answer));
    }

    void noAnswerIsNoUpdate()
    {
        FakeHttpClient http;
        QVERIFY(!UpdateCheck::check(http, u"1.0"_s, somewhere).result());
        QCOMPARE(http.requests.size(), 1);
    }

    void whatIsNoNewerIsNoUpdate()
    {
        const HttpAnswer answer{ .status = 200,
            .body = R"({"version":"1.1","url":"https:\/\/updates.test/"})" };
        QVERIFY(answered(answer, u"1.0.9"_s));
        QVERIFY(answered(answer, u"0"_s));
        QVERIFY(!answered(answer, u"1.1"_s));
        QVERIFY(!answered(answer, u"1.1.0"_s));
        QVERIFY(!answered(answer, u"2"_s));
    }

    void notesMayBeMissing_data()
    {
        QTest::addColumn<QByteArray>("notes");
        QTest::addColumn<std::optional<QString>>("expected");
        QTest::newRow("missing") << QByteArray() << std::optional<QString>();
        QTest::newRow("null") << QByteArray(R"(,"notes":null)") << std::optional<QString>();
        QTest::newRow("empty") << QByteArray(R"(,"notes":"")") << std::optional(u""_s);
        QTest::newRow("words") << QByteArray(R"(,"notes":"Faster")") << std::optional(u"Faster"_s);
    }

    void notesMayBeMissing()
    {
        QFETCH(QByteArray, notes);
        QFETCH(std::optional<QString>, expected);
        const auto update = answered(
            { .status = 200, .body = R"({"version":"2","url":"https:\/\/updates.test/")" + notes + "}" });
        QVERIFY(update);
        QVERIFY(update->notes == expected);
    }

    void bodyThatIsNotWholeIsNoUpdate_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("<html></html>");
        QTest::newRow("a text") << QByteArray("\"2\"");
        QTest::newRow("a list") << QByteArray(R"([{"version":"2","url":"https:\/\/updates.test/"}])");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("cut off") << QByteArray(R"({"version":"2","url":"https:\/\/updates.test/")");
        QTest::newRow("more behind it") << QByteArray(R"({"version":"2","url":"https:\/\/updates.test/"}})");
        QTest::newRow("bytes that are no text")
            << QByteArray("{\"version\":\"2\xff\",\"url\":\"https://a.test/\"}");
        QTest::newRow("deep") << QByteArray(60'000, '[');
        QTest::newRow("no url") << QByteArray(R"({"version":"2","notes":"n"})");
        QTest::newRow("no version") << QByteArray(R"({"url":"https:\/\/updates.test/"})");
        QTest::newRow("null url") << QByteArray(R"({"version":"2","url":null})");
        QTest::newRow("a number for a version")
            << QByteArray(R"({"version":2,"url":"https:\/\/updates.test/"})");
        QTest::newRow("a number for a url") << QByteArray(R"({"version":"2","url":7})");
        QTest::newRow("a number for notes")
            << QByteArray(R"({"version":"2","url":"https:\/\/updates.test/","notes":7})");
        QTest::newRow("another letter case")
            << QByteArray(R"({"Version":"2","url":"https:\/\/updates.test/"})");
        for (const auto *url : { "", "updates.test", "http://updates.test/", "/get", "//updates.test/get",
                 "file:///etc/passwd", "javascript:alert(1)", "data:text/html,x", "ftp://updates.test/",
                 "mailto:a@updates.test", "https:", "https://", "https:///get", "https://a b/", "https://[1/",
                 "https://updates.test:99999/", " https://updates.test/", "smb://updates.test/",
                 "quillbrook:update" })
            QTest::addRow("leads to '%s'", url) << "{\"version\":\"2\",\"url\":\"" + QByteArray(url) + "\"}";
    }

    void bodyThatIsNotWholeIsNoUpdate()
    {
        QFETCH(QByteArray, body);
        QVERIFY(!answered({ .status = 200, .body = body }));
    }

    // All of them are newer than 1.0: what keeps one back is only that it can't be shown.
    void versionIsOneShortWord_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("numbers") << QByteArray("2.0.1") << true;
        QTest::newRow("letters and hyphen") << QByteArray("2.0-Beta.1") << true;
        QTest::newRow("as long as it may be") << "2." + QByteArray(38, '0') << true;
        QTest::newRow("longer") << "2." + QByteArray(39, '0') << false;
        QTest::newRow("blank") << QByteArray("2.0 and more") << false;
        QTest::newRow("line feed") << QByteArray("2.0\\n3") << false;
        QTest::newRow("markup") << QByteArray("2.0<b>") << false;
        QTest::newRow("direction") << QByteArray("2.0\u202e1") << false;
        QTest::newRow("other digits") << QByteArray("2.0\u00b2") << false;
        QTest::newRow("letters of another script") << QByteArray("2.0\u0430") << false;
    }

    void versionIsOneShortWord()
    {
        QFETCH(QByteArray, version);
        const auto update = answered(
            { .status = 200, .body = "{\"version\":\"" + version + "\",\"url\":\"https://updates.test/\"}" });
        QTEST(update.has_value(), "isTaken");
        QVERIFY(!update || update->version == QString::fromUtf8(version));
    }

    void addressOfAWebSiteIsTaken_data()
    {
        QTest::addColumn<QString>("url");
        for (const auto *url : { "https://updates.test", "https://updates.test/get?version=2#linux",
                 "HTTPS://updates.test/", "https://updates.test:8443/" })
            QTest::newRow(url) << QString::fromLatin1(url);
    }

    void addressOfAWebSiteIsTaken()
    {
        QFETCH(QString, url);
        const auto update
            = answered({ .status = 200, .body = ("{\"version\":\"2\",\"url\":\"" + url + "\"}").toUtf8() });
        QVERIFY(update);
        QCOMPARE(update->url, QUrl(url));
    }
};

QUILLBROOK_SUITE(TestUpdateCheck, QCoreApplication)
#include "tst_UpdateCheck.moc"
