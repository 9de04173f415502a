#include "Screens/Scanning/ArrivingFindingsModel.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

Finding finding(const QString &id, qint64 bytes)
{
    return { .id = id, .rule = { .title = u"Title of "_s + id }, .bytes = bytes };
}

struct Fixture
{
    [[nodiscard]] QStringList titles() const
    {
        QStringList titles;
        for (int row = 0; row < model.rowCount(); ++row)
            titles.append(
                model.index(row).data(int(ArrivingFindingsModel::Role::title)).toString().section(' ', -1));
        return titles;
    }

    ArrivingFindingsModel model;
    QAbstractItemModelTester tester{ &model, QAbstractItemModelTester::FailureReportingMode::QtTest };
    QSignalSpy resets{ &model, &QAbstractItemModel::modelReset };
    QSignalSpy inserts{ &model, &QAbstractItemModel::rowsInserted };
};

} // namespace

class TestArrivingFindingsModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowTellsTitleAndSize()
    {
        Fixture fixture;
        fixture.model.setFindings({ finding("a", 1536) });
        const auto row = fixture.model.index(0);
        QCOMPARE(row.data(int(ArrivingFindingsModel::Role::title)).toString(), u"Title of a"_s);
        QCOMPARE(row.data(int(ArrivingFindingsModel::Role::size)).toString(), u"1.5 KB"_s);
        QCOMPARE(fixture.model.index(1).data(int(ArrivingFindingsModel::Role::size)), QVariant());
    }

    void newFindingsArePutInWhereTheyBelong()
    {
        Fixture fixture;
        fixture.model.setFindings({ finding("d", 4), finding("b", 2) });
        const auto resets = fixture.resets.count();
        fixture.inserts.clear();
        fixture.model.setFindings(
            { finding("e", 5), finding("d", 4), finding("c", 3), finding("b", 2), finding("a", 1) });
        QCOMPARE(fixture.titles(), QStringList({ "e", "d", "c", "b", "a" }));
        QCOMPARE(fixture.resets.count(), resets);
        QCOMPARE(fixture.inserts.count(), 3);
    }

    void sameFindingsChangeNothing()
    {
        Fixture fixture;
        fixture.model.setFindings({ finding("a", 1) });
        fixture.inserts.clear();
        fixture.model.setFindings({ finding("a", 1) });
        QCOMPARE(fixture.inserts.count(), 0);
        QCOMPARE(fixture.resets.count(), 0);
    }

    void newScanBeginsAnew()
    {
        Fixture fixture;
        fixture.model.setFindings({ finding("a", 1) });
        fixture.model.setFindings({});
        QCOMPARE(fixture.model.rowCount(), 0);
    }

    void otherFindingsReplaceThese()
    {
        Fixture fixture;
        fixture.model.setFindings({ finding("a", 2), finding("b", 1) });
        fixture.model.setFindings({ finding("b", 3), finding("a", 2) });
        QCOMPARE(fixture.titles(), QStringList({ "b", "a" }));
        fixture.model.setFindings({ finding("c", 1) });
        QCOMPARE(fixture.titles(), QStringList({ "c" }));
    }
};

QUILLBROOK_SUITE(TestArrivingFindingsModel, QCoreApplication)
#include "tst_ArrivingFindingsModel.moc"
