#include "Platform/SettingsUserDefaults.h"
#include "Support/TempTree.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <limits>
#include <optional>
#include <sys/resource.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto key = u"Quillbrook.something"_s;

// No file grows beyond what it is, as on a full disk.
class NoRoom
{
public:
    NoRoom()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        auto none = m_before;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_FSIZE, &none);
    }
    NoRoom(const NoRoom &) = delete;
    NoRoom &operator=(const NoRoom &) = delete;
    ~NoRoom() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

// What another process would find in the file. A copy, because this process remembers what it wrote to the
// file itself.
SettingsUserDefaults inAnotherProcess(const TempTree &folder)
{
    static int number = 0;
    const auto copy = folder.text("copy" + std::to_string(++number));
    QFile::copy(folder.text("settings"), copy);
    return SettingsUserDefaults(copy);
}

} // namespace

class TestSettingsUserDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nothingIsThereAtFirst();
    void liesInTheProgramsSettingsFile();
    void integersComeBack_data();
    void integersComeBack();
    void booleansComeBack();
    void realsComeBack_data();
    void realsComeBack();
    void textListsComeBack_data();
    void textListsComeBack();
    void dataComesBack_data();
    void dataComesBack();
    void datesComeBack_data();
    void datesComeBack();
    void whatIsNoMomentIsNoDate_data();
    void whatIsNoMomentIsNoDate();
    void laterValueReplacesTheEarlier();
    void removedValueIsGone();
    void valueOfAnotherTypeIsAbsent();
    void garbageIsAbsent_data();
    void garbageIsAbsent();
    void damagedFileMeansDefaults_data();
    void damagedFileMeansDefaults();
    void placeThatCanNotBeWrittenIsSilent();
    void folderInThePlaceOfTheFileIsSilent();
    void fullDiskKeepsTheOldFile();
};

void TestSettingsUserDefaults::initTestCase()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void TestSettingsUserDefaults::nothingIsThereAtFirst()
{
    const TempTree folder;
    const SettingsUserDefaults defaults(folder.text("settings"));
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.boolean(key));
    QVERIFY(!defaults.real(key));
    QVERIFY(!defaults.texts(key));
    QVERIFY(!defaults.data(key));
    QVERIFY(!defaults.date(key));
}

void TestSettingsUserDefaults::liesInTheProgramsSettingsFile()
{
    const TempTree folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.text());
    {
        SettingsUserDefaults defaults;
        defaults.setInteger(key, 12);
    }
    QFile file(folder.text("Quillbrook/Quillbrook.conf"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("[General]\nQuillbrook.something=12\n"));
}

void TestSettingsUserDefaults::integersComeBack_data()
{
    QTest::addColumn<qint64>("value");
    QTest::newRow("none") << qint64(0);
    QTest::newRow("some") << qint64(1'234'567);
    QTest::newRow("negative") << qint64(-1);
    QTest::newRow("largest") << std::numeric_limits<qint64>::max();
    QTest::newRow("smallest") << std::numeric_limits<qint64>::min();
}

void TestSettingsUserDefaults::integersComeBack()
{
    QFETCH(qint64, value);
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, value);
        QCOMPARE(defaults.integer(key), std::optional(value));
    }
    QCOMPARE(inAnotherProcess(folder).integer(key), std::optional(value));
}

void TestSettingsUserDefaults::booleansComeBack()
{
    for (const bool value : { true, false }) {
        const TempTree folder;
        {
            SettingsUserDefaults defaults(folder.text("settings"));
            defaults.setBoolean(key, value);
            QCOMPARE(defaults.boolean(key), std::optional(value));
        }
        QCOMPARE(inAnotherProcess(folder).boolean(key), std::optional(value));
    }
}

void TestSettingsUserDefaults::realsComeBack_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("none") << 0.0;
    QTest::newRow("a third") << 1.0 / 3;
    QTest::newRow("a time") << 739'801'234.123'456;
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("smallest") << std::numeric_limits<double>::denorm_min();
    QTest::newRow("negative") << -0.1;
}

void TestSettingsUserDefaults::realsComeBack()
{
    QFETCH(double, value);
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setReal(key, value);
        QVERIFY(defaults.real(key) == value);
    }
    QVERIFY(inAnotherProcess(folder).real(key) == value);
}

void TestSettingsUserDefaults::textListsComeBack_data()
{
    QTest::addColumn<QStringList>("value");
    QTest::newRow("none") << QStringList();
    QTest::newRow("one") << QStringList{ u"a.b"_s };
    QTest::newRow("one empty") << QStringList{ QString() };
    QTest::newRow("some") << QStringList{ u"a"_s, QString(), u"c"_s };
    QTest::newRow("signs") << QStringList{ u"a,b"_s, u"\"c\""_s, u"@d"_s, u"e;f=g"_s, u"h\ni"_s, u"\\j"_s };
    QTest::newRow("beyond ASCII") << QStringList{ u"größe"_s, u"отчёт"_s, u"📁"_s };
}

void TestSettingsUserDefaults::textListsComeBack()
{
    QFETCH(QStringList, value);
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setTexts(key, value);
        QCOMPARE(defaults.texts(key), std::optional(value));
    }
    QCOMPARE(inAnotherProcess(folder).texts(key), std::optional(value));
}

void TestSettingsUserDefaults::dataComesBack_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("none") << QByteArray("");
    QTest::newRow("text") << QByteArray("text");
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    QTest::newRow("every byte") << all;
}

void TestSettingsUserDefaults::dataComesBack()
{
    QFETCH(QByteArray, value);
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setData(key, value);
        QCOMPARE(defaults.data(key), std::optional(value));
    }
    QCOMPARE(inAnotherProcess(folder).data(key), std::optional(value));
}

void TestSettingsUserDefaults::datesComeBack_data()
{
    QTest::addColumn<QDateTime>("value");
    const QDateTime noon(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);
    QTest::newRow("whole") << noon;
    QTest::newRow("to the millisecond") << noon.addMSecs(7);
    QTest::newRow("the last one of a second") << noon.addMSecs(999);
    QTest::newRow("before 1970") << QDateTime(QDate(1912, 1, 1), QTime(0, 0, 0, 1), Qt::UTC);
    QTest::newRow("elsewhere") << QDateTime(QDate(2024, 6, 15), QTime(23, 30), Qt::OffsetFromUTC, -5 * 3600);
    QTest::newRow("by the clock on the wall") << QDateTime(QDate(2024, 6, 15), QTime(12, 0), Qt::LocalTime);
}

void TestSettingsUserDefaults::datesComeBack()
{
    QFETCH(QDateTime, value);
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setDate(key, value);
        QVERIFY(defaults.date(key) == value);
    }
    const auto read = inAnotherProcess(folder).date(key);
    QVERIFY(read == value);
    QCOMPARE(read->timeSpec(), Qt::UTC);
}

void TestSettingsUserDefaults::whatIsNoMomentIsNoDate_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("words") << QByteArray("yesterday");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a number") << QByteArray("739801234");
    QTest::newRow("a day") << QByteArray("2024-06-15");
    QTest::newRow("of no known place") << QByteArray("2024-06-15T12:00:00.000");
    QTest::newRow("no day") << QByteArray("2024-02-30T12:00:00.000Z");
    QTest::newRow("two") << QByteArray("2024-06-15T12:00:00.000Z, 2024-06-15T12:00:00.000Z");
    QTest::newRow("and more") << QByteArray("2024-06-15T12:00:00.000Z or so");
}

void TestSettingsUserDefaults::whatIsNoMomentIsNoDate()
{
    QFETCH(QByteArray, text);
    const TempTree folder;
    folder.fileWith("settings", "[General]\nQuillbrook.something=" + text.toStdString() + "\n");
    QVERIFY(!SettingsUserDefaults(folder.text("settings")).date(key));
}

void TestSettingsUserDefaults::laterValueReplacesTheEarlier()
{
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, 1);
        defaults.setTexts(key, { u"a"_s, u"b"_s });
        defaults.setInteger(key, 2);
    }
    QCOMPARE(inAnotherProcess(folder).integer(key), std::optional<qint64>(2));
}

void TestSettingsUserDefaults::removedValueIsGone()
{
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, 1);
        defaults.setInteger(u"Quillbrook.other"_s, 2);
        defaults.remove(key);
        QVERIFY(!defaults.integer(key));
    }
    const auto defaults = inAnotherProcess(folder);
    QVERIFY(!defaults.integer(key));
    QCOMPARE(defaults.integer(u"Quillbrook.other"_s), std::optional<qint64>(2));
}

void TestSettingsUserDefaults::valueOfAnotherTypeIsAbsent()
{
    const TempTree folder;
    SettingsUserDefaults defaults(folder.text("settings"));
    defaults.setTexts(key, { u"a"_s, u"b"_s });
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.boolean(key));
    QVERIFY(!defaults.real(key));
    QVERIFY(!defaults.data(key));
    QVERIFY(!defaults.date(key));
    defaults.setData(key, "\x01\x02");
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.texts(key));
    QVERIFY(!defaults.date(key));
    defaults.setBoolean(key, true);
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.real(key));
    QVERIFY(!defaults.data(key));
    QVERIFY(!defaults.date(key));
    defaults.setInteger(key, 12);
    QVERIFY(!defaults.date(key));
    defaults.setDate(key, QDateTime(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC));
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.boolean(key));
    QVERIFY(!defaults.real(key));
    QVERIFY(!defaults.data(key));
}

void TestSettingsUserDefaults::garbageIsAbsent_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("words") << QByteArray("many");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("more than there are") << QByteArray("1e999");
    QTest::newRow("no number") << QByteArray("nan");
    QTest::newRow("two numbers") << QByteArray("1, 2");
    QTest::newRow("a number and more") << QByteArray("12 files");
    QTest::newRow("decimal comma") << QByteArray("\"1,5\"");
    QTest::newRow("an unknown kind") << QByteArray("@Strange(\\x12)");
    QTest::newRow("yes") << QByteArray("yes");
}

void TestSettingsUserDefaults::garbageIsAbsent()
{
    QFETCH(QByteArray, text);
    const TempTree folder;
    folder.fileWith("settings", "[General]\nQuillbrook.something=" + text.toStdString() + "\n");
    const SettingsUserDefaults defaults(folder.text("settings"));
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.boolean(key));
    QVERIFY(!defaults.real(key));
    QVERIFY(!defaults.data(key));
}

void TestSettingsUserDefaults::damagedFileMeansDefaults_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("bytes") << QByteArray("\x00\xff\xfe\x80[[[=\n\n==]", 12);
    QTest::newRow("a line without a sign") << QByteArray("[General]\nQuillbrook.something\n");
    QTest::newRow("cut off") << QByteArray("[General]\nQuillbrook.some");
    QTest::newRow("cut off in a group") << QByteArray("[Gen");
    QTest::newRow("another format") << QByteArray("{ \"Quillbrook.something\": 12 }");
    QTest::newRow("long") << QByteArray(1'000'000, '[');
}

void TestSettingsUserDefaults::damagedFileMeansDefaults()
{
    QFETCH(QByteArray, content);
    const TempTree folder;
    folder.fileWith("settings", content.toStdString());
    SettingsUserDefaults defaults(folder.text("settings"));
    QVERIFY(!defaults.integer(key));
    QVERIFY(!defaults.data(key));
    // What is set is there for the rest of the run, whatever the file is like.
    defaults.setInteger(key, 12);
    QCOMPARE(defaults.integer(key), std::optional<qint64>(12));
}

void TestSettingsUserDefaults::placeThatCanNotBeWrittenIsSilent()
{
    const TempTree folder;
    folder.file("file");
    {
        SettingsUserDefaults defaults(folder.text("file/settings"));
        QVERIFY(!defaults.integer(key));
        defaults.setInteger(key, 12);
        QCOMPARE(defaults.integer(key), std::optional<qint64>(12));
    }
    QVERIFY(!SettingsUserDefaults(folder.text("file/settings")).integer(key));
}

void TestSettingsUserDefaults::folderInThePlaceOfTheFileIsSilent()
{
    const TempTree folder;
    folder.folder("settings");
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        QVERIFY(!defaults.integer(key));
        defaults.setInteger(key, 12);
        QCOMPARE(defaults.integer(key), std::optional<qint64>(12));
    }
    QVERIFY(QDir(folder.text("settings")).exists());
}

void TestSettingsUserDefaults::fullDiskKeepsTheOldFile()
{
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, 12);
    }
    {
        const NoRoom noRoom;
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, 13);
    }
    QCOMPARE(inAnotherProcess(folder).integer(key), std::optional<qint64>(12));
}

QTEST_GUILESS_MAIN(TestSettingsUserDefaults)
#include "tst_SettingsUserDefaults.moc"
