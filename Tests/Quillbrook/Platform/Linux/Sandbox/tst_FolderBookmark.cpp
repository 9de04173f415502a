#include "Platform/Linux/Sandbox/FolderBookmark.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

namespace {

const std::string oddPath = "/run/user/1000/doc/ab12/some\xff\n\"one";

} // namespace

class TestFolderBookmark : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteOfAPathSurvives_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("plain") << QByteArray("/home/someone");
        QTest::newRow("root") << QByteArray("/");
        QTest::newRow("beyond ASCII") << QByteArray("/home/größe");
        QTest::newRow("not UTF-8") << QByteArray::fromStdString(oddPath);
        QByteArray all("/");
        for (int byte = 1; byte < 256; ++byte)
            all.append(static_cast<char>(byte));
        QTest::newRow("every byte") << all;
    }

    void everyByteOfAPathSurvives()
    {
        QFETCH(QByteArray, path);
        const FolderBookmark bookmark{ .path = path.toStdString() };
        QVERIFY(decodeFolderBookmark(encode(bookmark)) == bookmark);
    }

    void documentSurvives()
    {
        const FolderBookmark bookmark{ .path = oddPath,
            .document = PortalDocument{ .id = "ab12", .rest = "some\xff\n\"one" } };
        QVERIFY(decodeFolderBookmark(encode(bookmark)) == bookmark);
    }

    void damagedDataAreNothing_data()
    {
        QTest::addColumn<QByteArray>("data");
        const auto newRow = [](const char *name, const QByteArray &data) { QTest::newRow(name) << data; };
        const auto path = QByteArray("/home/someone").toBase64();
        newRow("empty", {});
        newRow("no JSON", "/home/someone");
        newRow("a list", "[1]");
        newRow("no version", "{\"path\":\"" + path + "\"}");
        newRow("a later version", "{\"version\":2,\"path\":\"" + path + "\"}");
        newRow("version as text", "{\"version\":\"1\",\"path\":\"" + path + "\"}");
        newRow("no path", "{\"version\":1}");
        newRow("path of another type", "{\"version\":1,\"path\":7}");
        newRow("path in no base 64", "{\"version\":1,\"path\":\"%%%\"}");
        newRow("empty path", "{\"version\":1,\"path\":\"\"}");
        newRow("relative path", "{\"version\":1,\"path\":\"" + QByteArray("home").toBase64() + "\"}");
        newRow(
            "path with a zero", "{\"version\":1,\"path\":\"" + QByteArray("/home\0x", 7).toBase64() + "\"}");
        const auto document = [&path](const QByteArray &id, const QByteArray &rest) {
            return "{\"version\":1,\"path\":\"" + path + "\",\"document\":\"" + id.toBase64()
                + "\",\"below\":\"" + rest.toBase64() + "\"}";
        };
        newRow("document without an id", document("", "someone"));
        newRow("id that leads up", document("..", "someone"));
        newRow("id of two names", document("a/b", "someone"));
        newRow("nothing below", document("ab12", ""));
        newRow("below that leads up", document("ab12", "someone/../../x"));
        newRow("below from the root", document("ab12", "/someone"));
        newRow("document alone",
            "{\"version\":1,\"path\":\"" + path + "\",\"document\":\"" + QByteArray("ab12").toBase64()
                + "\"}");
    }

    void damagedDataAreNothing()
    {
        QFETCH(QByteArray, data);
        QVERIFY(!decodeFolderBookmark(data));
    }

    void cutDataAreNothing()
    {
        const auto whole = encode(
            { .path = oddPath, .document = PortalDocument{ .id = "ab12", .rest = "some\xff\n\"one" } });
        for (qsizetype length = 0; length < whole.size(); ++length)
            QVERIFY(!decodeFolderBookmark(whole.first(length)));
    }

    void documentIsReadFromItsPath_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QByteArray>("rest");
        const auto newRow = [](const char *name, const char *path, const char *id, const char *rest) {
            QTest::newRow(name) << QByteArray(path) << QByteArray(id) << QByteArray(rest);
        };
        newRow("folder", "/run/doc/ab12/someone", "ab12", "someone");
        newRow("folder within", "/run/doc/ab12/someone/src", "ab12", "someone/src");
        newRow("not UTF-8", "/run/doc/ab12/some\xff", "ab12", "some\xff");
        newRow("id alone", "/run/doc/ab12", "", "");
        newRow("id with a slash", "/run/doc/ab12/", "", "");
        newRow("the mount point", "/run/doc", "", "");
        newRow("a like name", "/run/docs/ab12/someone", "", "");
        newRow("elsewhere", "/home/run/doc/ab12/someone", "", "");
        newRow("of another program", "/run/doc/by-app/org.some.App/ab12", "", "");
        newRow("leads up", "/run/doc/ab12/../..", "", "");
        newRow("double slash", "/run/doc//ab12/someone", "", "");
    }

    void documentIsReadFromItsPath()
    {
        QFETCH(QByteArray, path);
        const auto document = portalDocument(path.toStdString(), "/run/doc").value_or(PortalDocument());
        QTEST(QByteArray::fromStdString(document.id), "id");
        QTEST(QByteArray::fromStdString(document.rest), "rest");
        QVERIFY(!portalDocument(path.toStdString(), {}));
    }
};

QUILLBROOK_SUITE(TestFolderBookmark, QCoreApplication)
#include "tst_FolderBookmark.moc"
