#include "Core/FindingCollector.h"
#include "Support/Suite.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

Finding finding(const QString &id, qint64 bytes, const QString &title = u"a title"_s)
{
    return { .id = id, .rule = { .title = title }, .bytes = bytes };
}

} // namespace

class TestFindingCollector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithNothing()
    {
        const FindingCollector collector;
        QVERIFY(collector.found().findings.isEmpty());
        QVERIFY(!collector.found().latest);
        QVERIFY(!collector.found().finished);
    }

    // Up to 16 elements every sort of the library happens to keep the order of equal ones.
    void largestComesFirstAndEqualSizesKeepTheirOrder()
    {
        FindingCollector collector;
        QStringList large;
        QStringList small;
        for (int i = 0; i < 30; ++i) {
            small.append(u"small %1"_s.arg(i));
            large.append(u"large %1"_s.arg(i));
            collector.add(finding(small.last(), 1));
            collector.add(finding(large.last(), 3));
        }
        QStringList ids;
        for (const auto &item : collector.found().findings)
            ids.append(item.id);
        QCOMPARE(ids, large + small);
    }

    void latestIsTheTitleOfTheLastOne()
    {
        FindingCollector collector;
        QCOMPARE(collector.add(finding(u"a"_s, 9, u"Trash"_s)), qsizetype(1));
        QCOMPARE(collector.add(finding(u"b"_s, 1, u"Saved web pages"_s)), qsizetype(2));
        QCOMPARE(collector.found().latest, std::optional(u"Saved web pages"_s));
    }

    void finishIsSeen()
    {
        FindingCollector collector;
        collector.finish();
        QVERIFY(collector.found().finished);
    }

    void manyThreadsLoseNothing()
    {
        constexpr int threads = 4;
        constexpr int each = 500;
        FindingCollector collector;
        {
            std::vector<std::jthread> adding;
            for (int thread = 0; thread < threads; ++thread)
                adding.emplace_back([&collector, thread] {
                    for (int i = 0; i < each; ++i)
                        collector.add(finding(QString::number(thread * each + i), i));
                });
            while (collector.found().findings.size() < threads * each / 2)
                std::this_thread::yield();
        }
        QCOMPARE(collector.found().findings.size(), threads * each);
    }
};

QUILLBROOK_SUITE(TestFindingCollector, QCoreApplication)
#include "tst_FindingCollector.moc"
