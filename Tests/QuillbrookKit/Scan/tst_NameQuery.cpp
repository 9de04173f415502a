#include "Scan/NameQuery.h"
#include "Support/Suite.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// The rule in its plainest form.
bool holdsPlainly(const QString &text, const QByteArray &name)
{
    const auto fold = [](const QString &of) { return of.toLower().normalized(QString::NormalizationForm_C); };
    return fold(QString::fromUtf8(name)).contains(fold(text));
}

// As a search over a tree asks: the name lies among others, and is only looked at when a byte of it is
// marked.
bool holds(const QString &text, const QByteArray &name, qsizetype before = 3, qsizetype after = 0)
{
    const NameQuery query(text);
    const auto names = QByteArray(before, '-') + name + QByteArray(after, '-');
    const auto marks = query.marks({ names.constData(), size_t(names.size()) });
    return marks.holdsOneOf(size_t(before), size_t(name.size()))
        && query.isHeldBy({ name.constData(), size_t(name.size()) });
}

} // namespace

class TestNameQuery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInAnyLetterCase_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("found");
        QTest::newRow("same") << u"lab"_s << QByteArray("lab") << true;
        QTest::newRow("upper text") << u"AB"_s << QByteArray("lab.txt") << true;
        QTest::newRow("upper name") << u"ab"_s << QByteArray("LAB.TXT") << true;
        QTest::newRow("other") << u"ab"_s << QByteArray("l.a.b") << false;
        QTest::newRow("longer than the name") << u"label"_s << QByteArray("lab") << false;
        QTest::newRow("empty name") << u"ab"_s << QByteArray() << false;
        QTest::newRow("a near miss before the hit") << u"aab"_s << QByteArray("aaab") << true;
        QTest::newRow("signs between the letter cases are not letters")
            << u"[\\]"_s << QByteArray("{|}") << false;
        QTest::newRow("at sign is not a grave accent") << u"@@"_s << QByteArray("``") << false;
        QTest::newRow("beyond ASCII") << u"ÄÖ"_s << QByteArray("säöle") << true;
        QTest::newRow("Cyrillic") << u"ОТЧЁТ"_s << QByteArray("Мой отчёт.txt") << true;
        QTest::newRow("Greek has one lower sigma here") << u"ΟΔΟΣ"_s << QByteArray("οδοσ") << true;
        QTest::newRow("ASCII text in another name") << u"txt"_s << QByteArray("отчёт.TXT") << true;
        QTest::newRow("ASCII text not in another name") << u"doc"_s << QByteArray("отчёт.txt") << false;
        QTest::newRow("other text in an ASCII name") << u"отчёт"_s << QByteArray("report") << false;
        QTest::newRow("composed text, decomposed name")
            << u"caf\u00e9"_s << QByteArray("Cafe\xcc\x81s") << true;
        QTest::newRow("decomposed text, composed name")
            << u"cafe\u0301"_s << QByteArray("caf\xc3\xa9s") << true;
        QTest::newRow("a letter is not found in its composed form")
            << u"cafe"_s << QByteArray("Cafe\xcc\x81s") << false;
        QTest::newRow("but beside it") << u"cafe"_s << QByteArray("cafe\xcc\x81 cafe") << true;
        QTest::newRow("Kelvin sign in the name") << u"kel"_s
                                                 << QByteArray("\xe2\x84\xaa"
                                                               "elvin")
                                                 << true;
        QTest::newRow("Kelvin sign in the text") << u"\u212ael"_s << QByteArray("kelvin") << true;
        QTest::newRow("dotted capital I in the name") << u"is"_s << QByteArray("\xc4\xb0stanbul") << false;
        QTest::newRow("dotted capital I alone") << u"ni"_s << QByteArray("n\xc4\xb0") << true;
        QTest::newRow("Greek question mark") << u"a;"_s << QByteArray("a\xcd\xbe") << true;
        QTest::newRow("Greek grave accent") << u"a`"_s << QByteArray("a\xe1\xbf\xaf") << true;
        QTest::newRow("not UTF-8, found beside") << u"ab"_s
                                                 << QByteArray("\xff\xfe"
                                                               "AB")
                                                 << true;
        QTest::newRow("not UTF-8, not across") << u"ab"_s
                                               << QByteArray("a\xff"
                                                             "b")
                                               << false;
        QTest::newRow("replacement character stands for bad bytes")
            << u"a\ufffd"_s << QByteArray("a\xff") << true;
        QTest::newRow("line feed") << u"a\nb"_s << QByteArray("A\nB") << true;
        QTest::newRow("emoji") << u"📁 b"_s << QByteArray("\xf0\x9f\x93\x81 B") << true;
    }

    void findsInAnyLetterCase()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, name);
        QTEST(holds(text, name), "found");
        QCOMPARE(holds(text, name), holdsPlainly(text, name));
    }

    void textIsFoundAtEveryPlaceAmongTheNames()
    {
        for (qsizetype length = 2; length <= 70; length += 17) {
            const auto text = QString(length - 1, u'x') + u'y';
            const auto name = text.toLatin1().toUpper();
            for (qsizetype before = 0; before <= 130; ++before) {
                for (const qsizetype after : { 0, 1, 63, 64, 65, 200 }) {
                    QVERIFY(holds(text, name, before, after));
                    QVERIFY(!holds(text, name.chopped(1), before, after));
                    QVERIFY(holds(u"kk"_s, "k\xe2\x84\xaa", before, after));
                }
            }
        }
    }

    void emptyTextIsHeldByEveryName()
    {
        QVERIFY(NameQuery(QString()).isHeldBy("lab"));
        QVERIFY(NameQuery(QString()).isHeldBy({}));
    }

    void textAcrossTwoNamesIsInNeither()
    {
        const NameQuery query(u"ab"_s);
        const QByteArray names("xabx");
        const auto marks = query.marks({ names.constData(), size_t(names.size()) });
        QVERIFY(!marks.isEmpty());
        QVERIFY(!query.isHeldBy("xa"));
        QVERIFY(!query.isHeldBy("bx"));
    }

    void namesWithoutTheTextAreNotMarked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("names");
        QTest::newRow("no names") << u"ab"_s << QByteArray();
        QTest::newRow("fewer bytes than the text") << u"abc"_s << QByteArray("ab");
        QTest::newRow("ASCII") << u"ab"_s << QByteArray("report.txt").repeated(100);
        QTest::newRow("beyond ASCII") << u"ab"_s << QByteArray("отчёт.txt").repeated(100);
        QTest::newRow("text beyond ASCII") << u"отчёт"_s << QByteArray("report.txt").repeated(100);
    }

    void namesWithoutTheTextAreNotMarked()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, names);
        QVERIFY(NameQuery(text).marks({ names.constData(), size_t(names.size()) }).isEmpty());
    }

    void everyCharacterThatFoldsToAsciiIsKnown()
    {
        for (char32_t code = 0x80; code <= 0x10ffff; ++code) {
            if (code >= 0xd800 && code <= 0xdfff)
                continue;
            const auto character = QString::fromUcs4(&code, 1);
            const auto folded = character.toLower().normalized(QString::NormalizationForm_C);
            const auto name = character.toUtf8();
            for (const auto part : folded) {
                if (part.unicode() < 0x80)
                    QVERIFY2(
                        holds(u"-"_s + QString(part), "-" + name), qPrintable(QString::number(code, 16)));
            }
        }
    }

    void agreesWithThePlainRule()
    {
        const QStringList pieces{ u"a"_s, u"B"_s, u"e"_s, u"\u0301"_s, u"\u00c9"_s, u"k"_s, u"\u212a"_s,
            u"\u0130"_s, u"i"_s, u"\u0307"_s, u"."_s, u"я"_s, u"Я"_s, u"\u037e"_s, u";"_s, u"📁"_s };
        QRandomGenerator random(20240601);
        const auto any = [&](int most) {
            QString text;
            for (auto left = random.bounded(most + 1); left > 0; --left)
                text += pieces[random.bounded(pieces.size())];
            return text;
        };
        int found = 0;
        for (int i = 0; i < 100'000; ++i) {
            const auto text = pieces[random.bounded(pieces.size())] + any(2);
            auto name = any(12).toUtf8();
            if (random.bounded(8) == 0)
                name.insert(random.bounded(name.size() + 1), '\xe2');
            const bool plainly = holdsPlainly(text, name);
            found += plainly ? 1 : 0;
            QVERIFY2(holds(text, name) == plainly,
                qPrintable(text + u" in "_s + QString::fromUtf8(name.toPercentEncoding())));
        }
        QVERIFY(found > 1000 && found < 99'000);
    }
};

QUILLBROOK_SUITE(TestNameQuery, NoApplication)
#include "tst_NameQuery.moc"
