#include "PropertyList.h"
#include "PropertyListBounds.h"
#include "Support/PropertyListBytes.h"
#include "Support/Suite.h"

#include <QTest>

#include <random>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace PropertyListBytes;

namespace {

std::optional<QString> nameIn(const QByteArray &data)
{
    const auto list = PropertyList::dictionary(data);
    return list ? list->text("name") : std::nullopt;
}

// Each object an array of the next one, `levels` deep.
QByteArray nested(quint32 levels, int timesNamed)
{
    QList<QByteArray> objects{ dictionary({ 1 }, { 2 }), text("name") };
    for (quint32 level = 0; level < levels; ++level)
        objects.append(array(QList<quint32>(timesNamed, level + 3)));
    objects.append(text("x"));
    return binary(objects);
}

} // namespace

class TestPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsRead_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("name");
        QTest::newRow("xml") << xml("<dict><key>name</key><string>iPhone 15</string></dict>")
                             << u"iPhone 15"_s;
        QTest::newRow("xml with entities")
            << xml("<dict><key>name</key><string>A &amp; B</string></dict>") << u"A & B"_s;
        QTest::newRow("xml, not ascii")
            << xml("<dict><key>name</key><string>Ann\u2019s \U0001f4f1</string></dict>")
            << u"Ann\u2019s \U0001f4f1"_s;
        QTest::newRow("xml, empty text") << xml("<dict><key>name</key><string></string></dict>") << u""_s;
        QTest::newRow("binary") << binary({ dictionary({ 1 }, { 2 }), text("name"), text("iPhone 15") })
                                << u"iPhone 15"_s;
        QTest::newRow("binary, a long text")
            << binary({ dictionary({ 1 }, { 2 }), text("name"), text(QByteArray(300, 'n')) })
            << QString(300, u'n');
        QTest::newRow("binary, one text for key and value")
            << binary({ dictionary({ 1 }, { 1 }), text("name") }) << u"name"_s;
        QTest::newRow("binary, a text ends at a zero byte")
            << binary({ dictionary({ 1 }, { 2 }), text("name"), text(QByteArray("a\0b", 3)) }) << u"a"_s;
        QTest::newRow("binary, UTF-16") << binary({ dictionary({ 1 }, { 2 }), text("name"),
            marker(0x6, 2) + bigEndian(0x00e9, 2) + bigEndian(0x2019, 2) })
                                        << u"\u00e9\u2019"_s;
    }
    void textIsRead()
    {
        QFETCH(QByteArray, data);
        QTEST(nameIn(data).value_or(u"(none)"_s), "name");
    }

    void whatIsNoTextIsAbsent_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("another key") << xml("<dict><key>Name</key><string>x</string></dict>");
        QTest::newRow("a number") << xml("<dict><key>name</key><integer>7</integer></dict>");
        QTest::newRow("a dictionary") << xml("<dict><key>name</key><dict/></dict>");
        QTest::newRow("an empty dictionary") << xml("<dict/>");
        QTest::newRow("binary, a number")
            << binary({ dictionary({ 1 }, { 2 }), text("name"), QByteArray("\x10\x07", 2) });
    }
    void whatIsNoTextIsAbsent()
    {
        QFETCH(QByteArray, data);
        QVERIFY(PropertyList::dictionary(data).has_value());
        QVERIFY(!nameIn(data));
    }

    void whatIsNoDictionaryIsNone_data()
    {
        QTest::addColumn<QByteArray>("data");
        const auto good = binary({ dictionary({ 1 }, { 2 }), text("name"), text("x") });
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("noise") << QByteArray("\x00\xff\x13\x37 noise", 10);
        QTest::newRow("a word") << QByteArray("bplist00");
        QTest::newRow("xml, an array") << xml("<array><string>name</string></array>");
        QTest::newRow("xml, a text") << xml("<string>name</string>");
        QTest::newRow("xml without an end")
            << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>name</key>");
        QTest::newRow("binary, an array") << binary({ array({ 1 }), text("name") });
        QTest::newRow("binary, cut off") << good.first(good.size() - 1);
        QTest::newRow("binary, cut in the middle") << good.first(12) + good.last(32);
        QTest::newRow("binary, a member that is not there")
            << binary({ dictionary({ 1 }, { 9 }), text("name") });
        QTest::newRow("binary, itself a member") << binary({ dictionary({ 1 }, { 0 }), text("name") });
        QTest::newRow("binary, members in a ring")
            << binary({ dictionary({ 1 }, { 2 }), text("name"), array({ 3 }), array({ 2 }) });
        QTest::newRow("binary, more members than bytes")
            << binary({ container(0xd, {}, 1ULL << 40), text("name") });
        QTest::newRow("binary, a count that wraps") << binary({ container(0xd, {}, ~0ULL), text("name") });
        QTest::newRow("binary, a text longer than the file")
            << binary({ dictionary({ 1 }, { 2 }), text("name"), marker(0x5, 1ULL << 62) });
        QTest::newRow("binary, a table beyond the end")
            << good.first(good.size() - 8) + bigEndian(1ULL << 62, 8);
        QTest::newRow("binary, a top that is not there")
            << good.first(good.size() - 16) + bigEndian(77, 8) + good.last(8);
        QTest::newRow("larger than a property list may be") << xml("<dict><key>name</key><string>"
            + QByteArray(PropertyList::maximumBytes, 'x') + "</string></dict>");
        QTest::newRow("json") << QByteArray("{\"name\": \"x\"}");
    }
    void whatIsNoDictionaryIsNone()
    {
        QFETCH(QByteArray, data);
        QVERIFY(!PropertyList::dictionary(data));
    }

    // A parser without bounds ends the process at the deep ones and does not come back from the swelling
    // ones.
    void hostileListsAreRefusedAtOnce_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("binary, 200000 deep") << nested(200'000, 1);
        QTest::newRow("binary, each level named twice, 40 deep") << nested(40, 2);
        QTest::newRow("binary, one long text named a million times") << binary({ dictionary({ 1 }, { 2 }),
            text("name"), array(QList<quint32>(1'000'000, 3)), text(QByteArray(100'000, 'x')) });
        QTest::newRow("xml, 1000000 deep")
            << xml("<dict><key>name</key>" + QByteArray("<array>").repeated(1'000'000)
                   + QByteArray("</array>").repeated(1'000'000) + "</dict>");
        QTest::newRow("xml, 1000000 deep behind comments that close")
            << xml("<dict><key>name</key>" + QByteArray("<array><!--</array>-->").repeated(700'000));
        QTest::newRow("xml, never closed")
            << QByteArray("<plist>") + QByteArray("<dict><key>k</key>").repeated(500'000);
    }
    void hostileListsAreRefusedAtOnce()
    {
        QFETCH(QByteArray, data);
        QVERIFY(!PropertyList::dictionary(data));
    }

    void orderlyNestingIsWithinBounds()
    {
        QVERIFY(isWithinPropertyListBounds(nested(100, 1)));
        QVERIFY(isWithinPropertyListBounds(nested(10, 2)));
        QVERIFY(!isWithinPropertyListBounds(nested(130, 1)));
        QVERIFY(isWithinPropertyListBounds(xml(QByteArray("<array>").repeated(1000))));
        QVERIFY(PropertyList::dictionary(nested(100, 1)).has_value());
    }

    // No damage to an honest file may do more than make it unreadable.
    void damagedListsNeverCrash()
    {
        const QByteArray originals[] = {
            binary({ dictionary({ 1, 3 }, { 2, 4 }), text("name"), text("iPhone 15"), text("more"),
                array({ 1, 2, 5 }), QByteArray("\x13\0\0\0\0\0\0\0\x07", 9) }),
            xml("<dict><key>name</key><string>iPhone "
                "15</string><key>more</key><array><integer>7</integer><true/></array></dict>"),
        };
        std::mt19937 random(20240615);
        int unreadable = 0;
        for (int round = 0; round < 20'000; ++round) {
            auto data = originals[round % 2];
            for (auto damages = random() % 4 + 1; damages > 0; --damages)
                data[static_cast<qsizetype>(random() % static_cast<size_t>(data.size()))]
                    = static_cast<char>(random());
            if (random() % 4 == 0)
                data.truncate(static_cast<qsizetype>(random() % static_cast<size_t>(data.size())));
            unreadable += !nameIn(data);
        }
        QVERIFY(unreadable > 1000 && unreadable < 20'000);
    }
};

QUILLBROOK_SUITE(TestPropertyList, NoApplication)
#include "tst_PropertyList.moc"
