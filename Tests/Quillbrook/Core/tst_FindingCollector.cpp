#include "Core/FindingCollector.h"

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

QStringList ids(const FindingCollector &collector)
{
    QStringList ids;
    for (const auto &item : collector.look().findings)
        ids.append(item.id);
    return ids;
}

} // namespace

class FindingCollectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithNothing();
    void largestComesFirst();
    void equalSizesKeepTheirOrder();
    void latestIsTheTitleOfTheLastOne();
    void finishIsSeen();
    void manyThreadsLoseNothing();
};

void FindingCollectorTest::startsWithNothing()
{
    const FindingCollector collector;
    QVERIFY(collector.look().findings.isEmpty());
    QVERIFY(!collector.look().latest);
    QVERIFY(!collector.look().finished);
}

void FindingCollectorTest::largestComesFirst()
{
    FindingCollector collector;
    collector.add(finding(u"small"_s, 1));
    collector.add(finding(u"large"_s, 3));
    collector.add(finding(u"middle"_s, 2));
    QCOMPARE(ids(collector), QStringList({ "large", "middle", "small" }));
}

void FindingCollectorTest::equalSizesKeepTheirOrder()
{
    FindingCollector collector;
    for (const auto *id : { "one", "two", "three", "four" })
        collector.add(finding(id, 7));
    QCOMPARE(ids(collector), QStringList({ "one", "two", "three", "four" }));
}

void FindingCollectorTest::latestIsTheTitleOfTheLastOne()
{
    FindingCollector collector;
    collector.add(finding(u"a"_s, 9, u"Trash"_s));
    collector.add(finding(u"b"_s, 1, u"Saved web pages"_s));
    QCOMPARE(collector.look().latest, std::optional(u"Saved web pages"_s));
}

void FindingCollectorTest::finishIsSeen()
{
    FindingCollector collector;
    collector.finish();
    QVERIFY(collector.look().finished);
}

void FindingCollectorTest::manyThreadsLoseNothing()
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
        while (collector.look().findings.size() < threads * each / 2)
            std::this_thread::yield();
    }
    QCOMPARE(collector.look().findings.size(), threads * each);
}

QTEST_GUILESS_MAIN(FindingCollectorTest)
#include "tst_FindingCollector.moc"
