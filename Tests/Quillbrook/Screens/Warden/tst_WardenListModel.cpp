#include "Screens/Warden/WardenListModel.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Kind = WardenLines::Kind;

namespace {

struct Fixture
{
    Fixture()
    {
        model.setRows({ { .kind = Kind::Banner }, { .kind = Kind::Heading, .title = "Safe to remove" },
            { .id = "a", .title = "Trash", .first = true }, { .id = "b", .title = "Saved web pages" } });
        resets.clear();
        changes.clear();
    }

    WardenListModel model;
    QAbstractItemModelTester tester{ &model, QAbstractItemModelTester::FailureReportingMode::QtTest };
    QSignalSpy resets{ &model, &QAbstractItemModel::modelReset };
    QSignalSpy changes{ &model, &QAbstractItemModel::dataChanged };
};

} // namespace

class TestWardenListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineTellsWhatItIs()
    {
        const Fixture fixture;
        QCOMPARE(fixture.model.rowCount(), 4);
        const auto line = fixture.model.index(2);
        QCOMPARE(line.data(int(WardenListModel::Role::kind)).toInt(), int(Kind::Finding));
        QCOMPARE(line.data(int(WardenListModel::Role::row)).value<WardenRow>(), fixture.model.rows().at(2));
        QCOMPARE(line.data(Qt::DisplayRole).toString(), u"Trash"_s);
        QCOMPARE(fixture.model.index(0).data(int(WardenListModel::Role::kind)).toInt(), int(Kind::Banner));
    }

    void changedWordsLeaveTheLinesInPlace()
    {
        Fixture fixture;
        auto rows = fixture.model.rows();
        rows[2].ticked = true;
        fixture.model.setRows(rows);
        QCOMPARE(fixture.resets.count(), 0);
        QCOMPARE(fixture.changes.count(), 1);
        QCOMPARE(fixture.changes.first().first().toModelIndex().row(), 2);
        QVERIFY(fixture.model.rows().at(2).ticked);
    }

    void sameLinesChangeNothing()
    {
        Fixture fixture;
        fixture.model.setRows(QList<WardenRow>(fixture.model.rows()));
        QCOMPARE(fixture.resets.count(), 0);
        QCOMPARE(fixture.changes.count(), 0);
    }

    void otherLinesReplaceThese_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("length");
        QTest::newRow("fewer at the end") << 0 << 3;
        QTest::newRow("fewer at the beginning") << 1 << 3;
        QTest::newRow("none") << 0 << 0;
    }

    void otherLinesReplaceThese()
    {
        QFETCH(int, from);
        QFETCH(int, length);
        Fixture fixture;
        const auto rows = fixture.model.rows().mid(from, length);
        fixture.model.setRows(rows);
        QCOMPARE(fixture.resets.count(), 1);
        QCOMPARE(fixture.model.rows(), rows);
    }

    void keyboardStopsAtFindings()
    {
        const Fixture fixture;
        QVERIFY(!fixture.model.takesKeyboard(0));
        QVERIFY(!fixture.model.takesKeyboard(1));
        QVERIFY(fixture.model.takesKeyboard(2));
        QVERIFY(fixture.model.takesKeyboard(3));
    }

    void linesOutsideAreNone()
    {
        const Fixture fixture;
        QVERIFY(!fixture.model.at(-1));
        QVERIFY(!fixture.model.at(4));
        QVERIFY(!fixture.model.takesKeyboard(-1));
        QVERIFY(!fixture.model.takesKeyboard(4));
    }
};

QUILLBROOK_SUITE(TestWardenListModel, QCoreApplication)
#include "tst_WardenListModel.moc"
