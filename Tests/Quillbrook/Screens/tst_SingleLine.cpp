#include "Screens/SingleLine.h"

#include <QTest>

using namespace Quillbrook;

class SingleLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void breaksBecomeBlanks_data();
    void breaksBecomeBlanks();
};

void SingleLineTest::breaksBecomeBlanks_data()
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
    QTest::newRow("next line") << QStringLiteral("a\u0085b") << "a b";
    QTest::newRow("line and paragraph separator") << QStringLiteral("a\u2028b\u2029c") << "a b c";
    QTest::newRow("wide blank stays")
        << QStringLiteral("a\u00a0b\u3000c") << QStringLiteral("a\u00a0b\u3000c");
    QTest::newRow("repaired byte stays") << QStringLiteral("caf\ufffd") << QStringLiteral("caf\ufffd");
    QTest::newRow("beyond the basic plane")
        << QStringLiteral("\U0001f600\n") << QStringLiteral("\U0001f600 ");
}

void SingleLineTest::breaksBecomeBlanks()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(singleLine(text), expected);
}

QTEST_APPLESS_MAIN(SingleLineTest)
#include "tst_SingleLine.moc"
