#include "Core/FindingCollector.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace Quillbrook;

namespace {

Finding finding(const QString &id, qint64 bytes, const QString &title = QStringLiteral("a title"))
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
    collector.add(finding(QStringLiteral("small"), 1));
    collector.add(finding(QStringLiteral("large"), 3));
    collector.add(finding(QStringLiteral("middle"), 2));
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
    collector.add(finding(QStringLiteral("a"), 9, QStringLiteral("Trash")));
    collector.add(finding(QStringLiteral("b"), 1, QStringLiteral("Saved web pages")));
    QCOMPARE(collector.look().latest, std::optional(QStringLiteral("Saved web pages")));
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
