#include "Scan/HardLinkSet.h"
#include "Support/Suite.h"

#include <QTest>

#include <random>
#include <set>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestHardLinkSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileIsNewOnlyOnce()
    {
        HardLinkSet set;
        QVERIFY(set.insert(1, 42));
        QVERIFY(!set.insert(1, 42));
        QVERIFY(set.insert(1, 43));
    }

    void sameIdOnAnotherDeviceIsAnotherFile()
    {
        HardLinkSet set;
        QVERIFY(set.insert(1, 42));
        QVERIFY(set.insert(2, 42));
        QVERIFY(set.insert(0, 42));
        QVERIFY(!set.insert(2, 42));
    }

    void clearForgets()
    {
        HardLinkSet set;
        QVERIFY(set.insert(1, 42));
        set.clear();
        QVERIFY(set.insert(1, 42));
    }

    void agreesWithAPlainSetFarBeyondItsRoom()
    {
        std::mt19937_64 random(4711);
        HardLinkSet set;
        std::set<std::pair<std::uint64_t, std::uint64_t>> plain;
        for (int i = 0; i < 200000; ++i) {
            const auto device = random() % 3;
            const auto file = random() % 100000 + 1;
            const auto isNew = plain.emplace(device, file).second;
            if (set.insert(device, file) != isNew)
                QFAIL(qPrintable(u"differs at step %1"_s.arg(i)));
        }
    }
};

QUILLBROOK_SUITE(TestHardLinkSet, QCoreApplication)
#include "tst_HardLinkSet.moc"
