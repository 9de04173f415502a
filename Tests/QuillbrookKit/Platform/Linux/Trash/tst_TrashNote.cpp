#include "Platform/Linux/Trash/TrashNote.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestTrashNote : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void originIsPercentEncoded_data()
    {
        QTest::addColumn<QByteArray>("origin");
        QTest::addColumn<QByteArray>("encoded");
        QTest::newRow("plain") << QByteArray("/a-b_c.d~/E9") << QByteArray("/a-b_c.d~/E9");
        QTest::newRow("blank and percent") << QByteArray("a b%41") << QByteArray("a%20b%2541");
        QTest::newRow("line feed") << QByteArray("a\nPath=/etc") << QByteArray("a%0APath%3D/etc");
        QTest::newRow("no text") << QByteArray("\xff\x01") << QByteArray("%FF%01");
        QTest::newRow("text") << QByteArray("\u00e4\u20ac") << QByteArray("%C3%A4%E2%82%AC");
        QTest::newRow("marks") << QByteArray("!'()*+,;:@&=$?#[]")
                               << QByteArray("%21%27%28%29%2A%2B%2C%3B%3A%40%26%3D%24%3F%23%5B%5D");
    }

    void originIsPercentEncoded()
    {
        QFETCH(QByteArray, origin);
        QFETCH(QByteArray, encoded);
        const QDateTime moment(QDate(2024, 2, 29), QTime(3, 4, 5), Qt::UTC);
        QCOMPARE(QByteArray::fromStdString(TrashNote::text(origin.toStdString(), moment)),
            "[Trash Info]\nPath=" + encoded + "\nDeletionDate=2024-02-29T03:04:05\n");
    }

    void dateIsLocalTime()
    {
        const auto zone = qgetenv("TZ");
        qputenv("TZ", "UTC-5:30");
        const QDateTime moment(QDate(2024, 12, 31), QTime(22, 0, 0), Qt::UTC);
        const auto text = TrashNote::text("a", moment);
        qputenv("TZ", zone);
        QVERIFY(text.ends_with("DeletionDate=2025-01-01T03:30:00\n"));
    }

    void candidates_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("attempt");
        QTest::addColumn<int>("longest");
        QTest::addColumn<QByteArray>("candidate");
        QTest::newRow("first") << QByteArray("a.txt") << 1 << 255 << QByteArray("a.txt");
        QTest::newRow("second") << QByteArray("a.txt") << 2 << 255 << QByteArray("a.2.txt");
        QTest::newRow("hundredth") << QByteArray("a.b.txt") << 100 << 255 << QByteArray("a.b.100.txt");
        QTest::newRow("no extension") << QByteArray("a") << 2 << 255 << QByteArray("a.2");
        QTest::newRow("hidden") << QByteArray(".bashrc") << 2 << 255 << QByteArray(".bashrc.2");
        QTest::newRow("dot at the end") << QByteArray("a.") << 2 << 255 << QByteArray("a.2.");
        QTest::newRow("shortened") << QByteArray("abcdefgh.txt") << 1 << 18 << QByteArray("abcdefgh");
        QTest::newRow("shortened before its extension")
            << QByteArray("abcdefgh.txt") << 2 << 20 << QByteArray("abcd.2.txt");
        QTest::newRow("extension too long to keep")
            << QByteArray("a.bcdefghijkl") << 2 << 20 << QByteArray("a.bcdefg.2");
        QTest::newRow("character whole") << QByteArray("ab\u20ac") << 1 << 14 << QByteArray("ab");
        QTest::newRow("character fits") << QByteArray("ab\u20ac") << 1 << 15 << QByteArray("ab\u20ac");
        QTest::newRow("no characters") << QByteArray(8, '\x80') << 1 << 16 << QByteArray(6, '\x80');
    }

    void candidates()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, attempt);
        QFETCH(int, longest);
        QFETCH(QByteArray, candidate);
        const auto made = TrashNote::candidate(
            name.toStdString(), static_cast<std::uint64_t>(attempt), static_cast<size_t>(longest));
        QCOMPARE(QByteArray::fromStdString(made), candidate);
        QVERIFY(TrashNote::nameFor(made).size() <= static_cast<size_t>(longest));
    }
};

QUILLBROOK_SUITE(TestTrashNote, NoApplication)
#include "tst_TrashNote.moc"
