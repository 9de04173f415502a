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

    void whatCameOrWentIsExchangedInItsPlace_data()
    {
        QTest::addColumn<QStringList>("ids");
        QTest::addColumn<int>("removed");
        QTest::addColumn<int>("inserted");
        QTest::newRow("fewer at the end") << QStringList{ u"a"_s } << 1 << 0;
        QTest::newRow("fewer at the beginning") << QStringList{ u"b"_s } << 1 << 0;
        QTest::newRow("none") << QStringList() << 1 << 0;
        QTest::newRow("one between") << QStringList{ u"a"_s, u"c"_s, u"b"_s } << 0 << 1;
        QTest::newRow("the other way round") << QStringList{ u"b"_s, u"a"_s } << 1 << 1;
        QTest::newRow("the same twice") << QStringList{ u"a"_s, u"a"_s, u"b"_s } << 0 << 1;
    }

    void whatCameOrWentIsExchangedInItsPlace()
    {
        QFETCH(QStringList, ids);
        QFETCH(int, removed);
        QFETCH(int, inserted);
        Fixture fixture;
        QSignalSpy removals(&fixture.model, &QAbstractItemModel::rowsRemoved);
        QSignalSpy insertions(&fixture.model, &QAbstractItemModel::rowsInserted);
        auto rows = fixture.model.rows().first(2);
        for (const auto &id : ids)
            rows.append({ .id = id, .title = id });
        fixture.model.setRows(rows);
        QCOMPARE(fixture.model.rows(), rows);
        QCOMPARE(fixture.resets.count(), 0);
        QCOMPARE(removals.count(), removed);
        QCOMPARE(insertions.count(), inserted);
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
