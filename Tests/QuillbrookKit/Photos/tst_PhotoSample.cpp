#include "Photos/PhotoSample.h"
#include "Support/MadeAssets.h"
#include "Support/Suite.h"

#include <QTest>

#include <limits>

using namespace Quillbrook;

namespace {

using Assets = std::vector<std::vector<PhotoResource>>;

PhotoResource file(std::optional<qint64> bytes, std::optional<bool> isHere)
{
    return { .fileSize = bytes, .locallyAvailable = isHere };
}

} // namespace

class TestPhotoSample : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAnEvenSampleAndNoMore()
    {
        // The rule as one would say it: every so-manieth from the first, until there are 200.
        for (const auto count : { 0, 1, 2, 199, 200, 201, 399, 400, 401, 450, 599, 600, 12345 }) {
            const auto assets = MadeAssets::of(count);
            const auto summary = PhotoSample::summary(*assets);
            std::vector<qsizetype> expected;
            const qsizetype stride = count < 400 ? 1 : count / 200;
            for (qsizetype place = 0; place < std::min(count, 200); ++place)
                expected.push_back(place * stride);
            QCOMPARE(assets->read, expected);
            QCOMPARE(summary,
                (PhotoSummary{ .count = count, .bytes = count, .sampled = qsizetype(expected.size()) }));
        }
    }

    void endsAt398Of450()
    {
        const auto assets = MadeAssets::of(450);
        QCOMPARE(PhotoSample::summary(*assets).sampled, qsizetype(200));
        QCOMPARE(assets->read.back(), qsizetype(398));
    }

    void countsFilesUpToTheFirstThatLiesHere_data()
    {
        QTest::addColumn<Assets>("assets");
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<qsizetype>("local");
        const auto row = [](const char *name, const Assets &assets, qint64 bytes, qsizetype local) {
            QTest::newRow(name) << assets << bytes << local;
        };
        row("one here", { { file(5, true) } }, 5, 1);
        row("the first here hides the second", { { file(5, true), file(7, true) } }, 5, 1);
        row("the second here", { { file(5, false), file(7, true), file(9, true) } }, 12, 1);
        row("none here", { { file(5, false), file(7, false) } }, 12, 0);
        row("not told whether here", { { file(5, {}), file(7, true) } }, 12, 1);
        row("no size", { { file({}, true) } }, 0, 1);
        row("no files", { {}, { file(8, true) } }, 8, 1);
        row("cut towards zero", { { file(1, true) }, { file(1, true) }, { file(0, true) } }, 2, 3);
    }

    void countsFilesUpToTheFirstThatLiesHere()
    {
        QFETCH(Assets, assets);
        QFETCH(qint64, bytes);
        QFETCH(qsizetype, local);
        const auto count = qsizetype(assets.size());
        const auto summary = PhotoSample::summary(MadeAssets(assets));
        QCOMPARE(
            summary, (PhotoSummary{ .count = count, .bytes = bytes, .localCount = local, .sampled = count }));
    }

    // A file with a hole may have any length.
    void sizesThatNoNumberHoldsAreTheLargest()
    {
        constexpr auto largest = std::numeric_limits<qint64>::max();
        const auto summary
            = PhotoSample::summary(MadeAssets({ { file(largest, true) }, { file(largest, true) } }));
        QCOMPARE(summary.bytes, largest);
    }

    void estimatesTheWholeRange()
    {
        Assets assets;
        for (int i = 0; i < 450; ++i)
            assets.push_back({ file(i % 4 == 0 ? 3 : 100, true) });
        // Every second is read: 100 of 3 and 100 of 100 bytes.
        QCOMPARE(PhotoSample::summary(MadeAssets(assets)).bytes, qint64(51.5 * 450));
    }
};

QUILLBROOK_SUITE(TestPhotoSample, NoApplication)
#include "tst_PhotoSample.moc"
