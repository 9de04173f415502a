#include "Screens/Map/BreadcrumbModel.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QTest>

using namespace Quillbrook;

namespace {

struct Fixture : ScannedHome
{
    [[nodiscard]] QVariant value(int row, BreadcrumbModel::Role role) const
    {
        return breadcrumb.index(row).data(int(role));
    }

    BreadcrumbModel breadcrumb{ model };
    QAbstractItemModelTester tester{ &breadcrumb, QAbstractItemModelTester::FailureReportingMode::QtTest };
};

} // namespace

class TestBreadcrumbModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyBeforeAScan()
    {
        Fixture fixture;
        QCOMPARE(fixture.breadcrumb.rowCount(), 0);
    }

    void startsWithTheScannedFolder()
    {
        Fixture fixture;
        fixture.scan();
        QCOMPARE(fixture.breadcrumb.rowCount(), 1);
        QCOMPARE(fixture.value(0, BreadcrumbModel::Role::name).toString(), "/home/someone");
    }

    void followsDrillingAndPopping()
    {
        Fixture fixture;
        fixture.scan();
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        fixture.model.navigation().drillInto(fixture.node("Projects/renderer"));
        QCOMPARE(fixture.breadcrumb.rowCount(), 3);
        QCOMPARE(fixture.value(2, BreadcrumbModel::Role::name).toString(), "renderer");
        fixture.breadcrumb.popTo(1);
        QCOMPARE(fixture.breadcrumb.rowCount(), 2);
        QCOMPARE(fixture.model.navigation().focus(), fixture.node("Projects"));
    }

    void onlyTheLastRowIsLast()
    {
        Fixture fixture;
        fixture.scan();
        fixture.model.navigation().drillInto(fixture.node("Projects"));
        QVERIFY(!fixture.value(0, BreadcrumbModel::Role::last).toBool());
        QVERIFY(fixture.value(1, BreadcrumbModel::Role::last).toBool());
    }

    void rowsOutsideDoNothing()
    {
        Fixture fixture;
        fixture.scan();
        fixture.breadcrumb.popTo(-1);
        fixture.breadcrumb.popTo(7);
        QCOMPARE(fixture.model.navigation().focus(), fixture.model.scans().rootNode());
    }
};

QUILLBROOK_SUITE(TestBreadcrumbModel, QCoreApplication)
#include "tst_BreadcrumbModel.moc"
