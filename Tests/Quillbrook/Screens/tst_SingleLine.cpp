#include "Screens/SingleLine.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestSingleLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void breaksBecomeBlanks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("usual") << "report 2.pdf"
                               << "report 2.pdf";
        QTest::newRow("line feed") << "two\nlines.bin"
                                   << "two lines.bin";
        QTest::newRow("carriage return and line feed") << "two\r\nlines"
                                                       << "two  lines";
        QTest::newRow("tabulator") << "a\tb"
                                   << "a b";
        QTest::newRow("escape and delete") << "a\x1b[1mb\x7f"
                                           << "a [1mb ";
        QTest::newRow("next line") << u"a\u0085b"_s << "a b";
        QTest::newRow("line and paragraph separator") << u"a\u2028b\u2029c"_s << "a b c";
        QTest::newRow("wide blank stays") << u"a\u00a0b\u3000c"_s << u"a\u00a0b\u3000c"_s;
        QTest::newRow("repaired byte stays") << u"caf\ufffd"_s << u"caf\ufffd"_s;
        QTest::newRow("embedding, override and their end")
            << u"a\u202ab\u202bc\u202cd\u202de\u202ef"_s << u"a b c d e f"_s;
        QTest::newRow("isolates") << u"a\u2066b\u2067c\u2068d\u2069e"_s << u"a b c d e"_s;
        QTest::newRow("direction marks") << u"a\u200eb\u200fc\u061cd"_s << u"a b c d"_s;
        QTest::newRow("neighbours of the marks stay") << u"\u061b\u061d\u200d\u2010\u202f\u2065\u206a"_s
                                                      << u"\u061b\u061d\u200d\u2010\u202f\u2065\u206a"_s;
        QTest::newRow("letters written from right to left stay") << u"\u05d0\u0628"_s << u"\u05d0\u0628"_s;
        QTest::newRow("beyond the basic plane") << u"\U0001f600\n"_s << u"\U0001f600 "_s;
    }

    void breaksBecomeBlanks()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(singleLine(text), expected);
    }
};

QUILLBROOK_SUITE(TestSingleLine, NoApplication)
#include "tst_SingleLine.moc"
