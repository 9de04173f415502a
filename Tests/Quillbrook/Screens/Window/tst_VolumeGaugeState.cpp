#include "Core/AppModel.h"
#include "Screens/Window/VolumeGaugeState.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebi = qint64{ 1024 } * 1024;
constexpr qint64 gibi = 1024 * mebi;

} // namespace

class TestVolumeGaugeState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usedShareIsToldInWords_data()
    {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<QString>("usedText");
        QTest::addColumn<QString>("freeText");
        QTest::addColumn<bool>("isDanger");
        QTest::newRow("nothing known") << qint64(0) << qint64(0) << "0% of 0 B used"
                                       << "0 B" << false;
        QTest::newRow("free without a total") << 5 * gibi << qint64(0) << "0% of 0 B used"
                                              << "5.0 GB" << false;
        QTest::newRow("empty") << 100 * gibi << 100 * gibi << "0% of 100 GB used"
                               << "100 GB" << false;
        QTest::newRow("full") << qint64(0) << 100 * gibi << "100% of 100 GB used"
                              << "0 B" << true;
        QTest::newRow("percent rounds down") << qint64(201) << qint64(1000) << "79% of 1000 B used"
                                             << "201 B" << false;
        QTest::newRow("exactly nine tenths") << qint64(100) << qint64(1000) << "90% of 1000 B used"
                                             << "100 B" << false;
        QTest::newRow("just above nine tenths") << qint64(99) << qint64(1000) << "90% of 1000 B used"
                                                << "99 B" << true;
        QTest::newRow("just below nine tenths") << qint64(101) << qint64(1000) << "89% of 1000 B used"
                                                << "101 B" << false;
    }

    void usedShareIsToldInWords()
    {
        QFETCH(qint64, free);
        QFETCH(qint64, total);
        const VolumeGauge gauge({ .free = free, .total = total, .liveFree = free, .liveOptimistic = free });
        QTEST(gauge.usedText, "usedText");
        QTEST(gauge.freeText, "freeText");
        QTEST(gauge.isDanger, "isDanger");
        QCOMPARE(gauge.note, QString());
    }

    void gapBetweenFreeFiguresIsExplained_data()
    {
        QTest::addColumn<qint64>("liveFree");
        QTest::addColumn<qint64>("liveOptimistic");
        QTest::addColumn<QString>("note");
        QTest::newRow("alike") << 10 * gibi << 10 * gibi << "";
        QTest::newRow("exactly 512 MiB") << 10 * gibi << 10 * gibi + 512 * mebi << "";
        QTest::newRow("one byte more")
            << 10 * gibi << 10 * gibi + 512 * mebi + 1
            << "Finder says 10.5 GB — it counts 512 MB of purgeable cache that a build "
               "cannot use.";
        QTest::newRow("large")
            << 10 * gibi << 30 * gibi
            << "Finder says 30.0 GB — it counts 20.0 GB of purgeable cache that a build cannot "
               "use.";
        QTest::newRow("less than free") << 10 * gibi << 2 * gibi << "";
    }

    void gapBetweenFreeFiguresIsExplained()
    {
        QFETCH(qint64, liveFree);
        QFETCH(qint64, liveOptimistic);
        const VolumeGauge gauge({ .free = liveFree,
            .total = 100 * gibi,
            .liveFree = liveFree,
            .liveOptimistic = liveOptimistic });
        QTEST(gauge.note, "note");
    }

    void followsTheVolume()
    {
        FakeServices machine;
        AppModel model(machine.services);
        VolumeGaugeState gauge(model);
        QSignalSpy changes(&gauge, &VolumeGaugeState::changed);
        QCOMPARE(gauge.usedText(), u"0% of 0 B used"_s);

        machine.volumes.answer = VolumeCapacity{
            .available = 5 * gibi, .availableForImportantUsage = 7 * gibi, .total = 100 * gibi
        };
        model.volume().refreshVolume();
        QCOMPARE(changes.count(), 1);
        QCOMPARE(gauge.usedShare(), 0.95);
        QVERIFY(gauge.isDanger());
        QCOMPARE(gauge.freeText(), u"5.0 GB"_s);
        QVERIFY(gauge.note().contains(u"2.0 GB of purgeable"_s));

        model.volume().refreshVolume();
        QCOMPARE(changes.count(), 1);
    }
};

QUILLBROOK_SUITE(TestVolumeGaugeState, QCoreApplication)
#include "tst_VolumeGaugeState.moc"
