#include "Core/Pane.h"
#include "Screens/Symbols/Symbol.h"
#include "Screens/Symbols/SymbolPaths.h"
#include "Support/Suite.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestSymbolPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOutlineStaysOnItsGrid_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto &name : SymbolPaths::names())
            QTest::newRow(qPrintable(name)) << name;
    }

    void everyOutlineStaysOnItsGrid()
    {
        QFETCH(QString, name);
        const auto &outline = SymbolPaths::outline(name);
        QVERIFY(!outline.stroked.isEmpty());
        const auto half = SymbolPaths::strokeWidth / 2;
        const auto inked = outline.stroked.boundingRect()
                               .adjusted(-half, -half, half, half)
                               .united(outline.filled.boundingRect());
        QVERIFY(QRectF(0, 0, SymbolPaths::gridSide, SymbolPaths::gridSide).contains(inked));
    }

    void everyPaneHasItsSymbol()
    {
        for (const auto &row : paneTable)
            QVERIFY2(!SymbolPaths::outline(symbol(row.pane)).stroked.isEmpty(), row.symbol);
    }

    void everyNameAScreenUsesIsInTheSet_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto *name :
            { "sparkles", "chevron.right", "folder.fill", "doc.fill", "xmark", "hand.raised.fill", "trash",
                "checkmark", "exclamationmark.shield.fill", "folder.badge.questionmark", "internaldrive",
                "arrow.clockwise", "arrow.uturn.backward", "calendar", "chevron.left" })
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void everyNameAScreenUsesIsInTheSet()
    {
        QFETCH(QString, name);
        QVERIFY(SymbolPaths::names().contains(name));
    }

    void unknownNameHasNoOutline()
    {
        QCOMPARE(SymbolPaths::outline(u"no.such.symbol"_s), SymbolOutline());
        QCOMPARE(SymbolPaths::outline({}), SymbolOutline());
    }

    void noTwoNamesShareAnOutline()
    {
        const auto names = SymbolPaths::names();
        for (qsizetype i = 0; i < names.size(); ++i)
            for (qsizetype j = i + 1; j < names.size(); ++j)
                QVERIFY2(!(SymbolPaths::outline(names.at(i)) == SymbolPaths::outline(names.at(j))),
                    qPrintable(QStringList({ names.at(i), names.at(j) }).join(u' ')));
    }

    void itemPaintsInItsColourAtItsSize()
    {
        Symbol symbol;
        QSignalSpy changes(&symbol, &Symbol::nameChanged);
        symbol.setName(u"minus"_s);
        symbol.setName(u"minus"_s);
        QCOMPARE(changes.count(), 1);
        symbol.setColor(Qt::red);
        symbol.setSize({ 32, 32 });

        QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        symbol.paint(&painter);
        painter.end();
        QCOMPARE(image.pixelColor(16, 16), QColor(Qt::red));
        QCOMPARE(image.pixelColor(16, 4), QColor(Qt::white));
        QCOMPARE(image.pixelColor(1, 16), QColor(Qt::white));
    }
};

QUILLBROOK_SUITE(TestSymbolPaths, QGuiApplication)
#include "tst_SymbolPaths.moc"
