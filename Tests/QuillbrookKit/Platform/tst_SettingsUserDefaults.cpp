#include "Platform/SettingsUserDefaults.h"
#include "Support/FakeSpaceReserve.h"
#include "Support/Suite.h"
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

// Sets a value, reads it again and once more in another process, and tells what that found.
template <typename Value, typename Given>
Value comesBack(const Value &value, void (SettingsUserDefaults::*set)(const QString &, Given),
    std::optional<Value> (SettingsUserDefaults::*get)(const QString &) const)
{
    const TempTree folder;
    {
        SettingsUserDefaults defaults(folder.text("settings"));
        (defaults.*set)(key, value);
        [&] { QVERIFY((defaults.*get)(key) == value); }();
    }
    const auto other = (inAnotherProcess(folder).*get)(key);
    [&] { QVERIFY(other == value); }();
    return other.value_or(Value());
}

} // namespace

class TestSettingsUserDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void nothingIsThereAtFirst()
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

    void valuesComeBack()
    {
        using Defaults = SettingsUserDefaults;
        using Integers = std::numeric_limits<qint64>;
        using Reals = std::numeric_limits<double>;
        for (const qint64 value :
            { qint64(0), qint64(1'234'567), qint64(-1), Integers::max(), Integers::min() })
            comesBack(value, &Defaults::setInteger, &Defaults::integer);
        for (const bool value : { true, false })
            comesBack(value, &Defaults::setBoolean, &Defaults::boolean);
        for (const double value :
            { 0.0, 1.0 / 3, 739'801'234.123'456, Reals::max(), Reals::denorm_min(), -0.1 })
            comesBack(value, &Defaults::setReal, &Defaults::real);
        for (const auto &value : { QStringList(), QStringList{ u"a.b"_s }, QStringList{ QString() },
                 QStringList{ u"a"_s, QString(), u"c"_s },
                 QStringList{ u"a,b"_s, u"\"c\""_s, u"@d"_s, u"e;f=g"_s, u"h\ni"_s, u"\\j"_s },
                 QStringList{ u"größe"_s, u"отчёт"_s, u"📁"_s } })
            comesBack(value, &Defaults::setTexts, &Defaults::texts);
        QByteArray everyByte;
        for (int byte = 0; byte < 256; ++byte)
            everyByte.append(static_cast<char>(byte));
        for (const auto &value : { QByteArray(""), QByteArray("text"), everyByte })
            comesBack(value, &Defaults::setData, &Defaults::data);
        const QDateTime noon(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);
        for (const auto &value : { noon, noon.addMSecs(7), noon.addMSecs(999),
                 QDateTime(QDate(1912, 1, 1), QTime(0, 0, 0, 1), Qt::UTC),
                 QDateTime(QDate(2024, 6, 15), QTime(23, 30), Qt::OffsetFromUTC, -5 * 3600),
                 QDateTime(QDate(2024, 6, 15), QTime(12, 0), Qt::LocalTime) })
            QCOMPARE(comesBack(value, &Defaults::setDate, &Defaults::date).timeSpec(), Qt::UTC);
    }

    void whatIsNoMomentIsNoDate_data()
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

    void whatIsNoMomentIsNoDate()
    {
        QFETCH(QByteArray, text);
        const TempTree folder;
        folder.fileWith("settings", "[General]\nQuillbrook.something=" + text.toStdString() + "\n");
        QVERIFY(!SettingsUserDefaults(folder.text("settings")).date(key));
    }

    // Without a turn of the event loop, after which a kill may come.
    void whatIsStoredIsInTheFileAtOnce()
    {
        const TempTree folder;
        SettingsUserDefaults defaults(folder.text("settings"));
        defaults.setInteger(key, 12);
        QCOMPARE(inAnotherProcess(folder).integer(key), std::nullopt);
        defaults.store();
        QCOMPARE(inAnotherProcess(folder).integer(key), std::optional<qint64>(12));
    }

    void laterValueReplacesTheEarlier()
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

    void removedValueIsGone()
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

    void valueOfAnotherTypeIsAbsent()
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

    void garbageIsAbsent_data()
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

    void garbageIsAbsent()
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

    void damagedFileMeansDefaults_data()
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

    void damagedFileMeansDefaults()
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

    void placeThatCanNotBeWrittenIsSilent()
    {
        const TempTree folder;
        folder.file("file");
        folder.folder("folder");
        for (const auto &place : { folder.text("file/settings"), folder.text("folder") }) {
            {
                SettingsUserDefaults defaults(place);
                QVERIFY(!defaults.integer(key));
                defaults.setInteger(key, 12);
                QCOMPARE(defaults.integer(key), std::optional<qint64>(12));
            }
            QVERIFY(!SettingsUserDefaults(place).integer(key));
        }
        QVERIFY(QDir(folder.text("folder")).exists());
    }

    void fullDiskKeepsTheOldFile()
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

    // Soon, from the event loop, and at the end.
    void fullDiskTakesTheReserve_data()
    {
        QTest::addColumn<bool>("ends");
        QTest::newRow("while it lives") << false;
        QTest::newRow("at its end") << true;
    }

    void fullDiskTakesTheReserve()
    {
        QFETCH(bool, ends);
        const TempTree folder;
        FakeSpaceReserve reserve;
        auto defaults = std::make_unique<SettingsUserDefaults>(folder.text("settings"), &reserve);
        defaults->setInteger(key, 12);
        QCoreApplication::processEvents();
        QCOMPARE(reserve.released, 0);

        auto noRoom = std::make_unique<NoRoom>();
        reserve.onRelease = [&noRoom] { noRoom.reset(); };
        defaults->setInteger(key, 13);
        if (ends)
            defaults.reset();
        QCoreApplication::processEvents();
        QCOMPARE(reserve.released, 1);
        QCOMPARE(reserve.replenished, 1);
        QCOMPARE(inAnotherProcess(folder).integer(key), std::optional<qint64>(13));
    }
};

QUILLBROOK_SUITE(TestSettingsUserDefaults, QCoreApplication)
#include "tst_SettingsUserDefaults.moc"
