#include "Screens/Lists/LargestState.h"
#include "Screens/Lists/SearchState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Role = NodeTableModel::Role;

struct Fixture : ScannedHome
{
    [[nodiscard]] static QString value(NodeTableState &table, int row, Role role)
    {
        return table.rows()->index(row).data(int(role)).toString();
    }
    [[nodiscard]] static QStringList names(NodeTableState &table)
    {
        QStringList names;
        for (const auto &row : table.rows()->rows())
            names.append(row.name);
        return names;
    }

    // Fetching the same rows again changes nothing that is to be seen, so that the fetches are counted.
    struct CountedLargest final : LargestState
    {
        using LargestState::LargestState;
        [[nodiscard]] QList<NodeSnapshot> fetch() const override
        {
            ++fetches;
            return LargestState::fetch();
        }
        mutable int fetches = 0;
    };

    CountedLargest largest{ model };
    SearchState search{ model };
    QAbstractItemModelTester largestTester{ largest.rows(),
        QAbstractItemModelTester::FailureReportingMode::QtTest };
    QAbstractItemModelTester searchTester{ search.rows(),
        QAbstractItemModelTester::FailureReportingMode::QtTest };
};

} // namespace

class TestNodeTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowTellsNameSizeAndPath()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        QCOMPARE(Fixture::value(fixture.largest, 0, Role::name), "film.mp4");
        QCOMPARE(Fixture::value(fixture.largest, 0, Role::size), "80.0 MB");
        QCOMPARE(Fixture::value(fixture.largest, 0, Role::path), "~/Videos/film.mp4");
    }

    void biggestFilesComeFirstAndFoldersNotAtAll()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        const QStringList expected{ "film.mp4", "scene.glb", "model.bin", "notes.txt", "lab.txt" };
        QCOMPARE(Fixture::names(fixture.largest), expected);
    }

    void biggestFilesAreTakenWhenTheListAppears()
    {
        Fixture fixture;
        fixture.largest.setShown(true);
        QCOMPARE(fixture.largest.rows()->rowCount(), 0);
        fixture.scan();
        QCOMPARE(fixture.largest.rows()->rowCount(), 5);
    }

    void biggestFilesAreTakenAgainFromANewTree()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.addFile("new.iso", 500);
        fixture.scan();
        QCOMPARE(Fixture::names(fixture.largest).value(0), "new.iso");
    }

    void newTreeCostsOneFetchOnly()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.addFile("new.iso", 500);
        const auto before = fixture.largest.fetches;
        fixture.scan();
        QCOMPARE(fixture.largest.fetches, before + 1);
    }

    void hiddenListFetchesNothing()
    {
        Fixture fixture;
        fixture.scan();
        QCOMPARE(fixture.largest.rows()->rowCount(), 0);
        fixture.largest.setShown(true);
        fixture.largest.setShown(false);
        fixture.addFile("new.iso", 500);
        fixture.scan();
        QVERIFY(!Fixture::names(fixture.largest).contains("new.iso"));
        fixture.largest.setShown(true);
        QVERIFY(Fixture::names(fixture.largest).contains("new.iso"));
    }

    void biggestFilesStopAtTwoHundred()
    {
        Fixture fixture;
        for (int i = 0; i < 250; ++i)
            fixture.addFile("file" + std::to_string(i) + ".dat", 1);
        fixture.scan();
        fixture.largest.setShown(true);
        QCOMPARE(fixture.largest.rows()->rowCount(), 200);
    }

    void emptyListSaysSo()
    {
        Fixture fixture;
        QCOMPARE(fixture.largest.emptyMessage(), "No files found.");
        QCOMPARE(fixture.search.emptyMessage(), "Type at least two characters.");
    }

    void charactersAreCountedAsTheSearchCountsThem_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isLongEnough");
        QTest::newRow("two letters") << "zz" << true;
        QTest::newRow("one letter") << "z" << false;
        QTest::newRow("one picture of two units") << u"\U0001f600"_s << false;
        QTest::newRow("a letter and its mark") << u"e\u0301"_s << false;
        QTest::newRow("a family, one picture of many")
            << u"\U0001f468\u200d\U0001f469\u200d\U0001f467"_s << false;
        QTest::newRow("two pictures") << u"\U0001f600\U0001f600"_s << true;
    }

    void charactersAreCountedAsTheSearchCountsThem()
    {
        QFETCH(QString, text);
        QFETCH(bool, isLongEnough);
        Fixture fixture;
        fixture.addFile(text.toStdString() + ".dat", 1);
        fixture.scan();
        fixture.search.setShown(true);
        fixture.search.setText(text);
        QCOMPARE(fixture.search.rows()->rowCount(), isLongEnough ? 1 : 0);
        QCOMPARE(fixture.search.emptyMessage(),
            isLongEnough ? u"No files found."_s : u"Type at least two characters."_s);
    }

    void searchRunsWhenTheTextChanges()
    {
        Fixture fixture;
        fixture.scan();
        fixture.search.setShown(true);
        fixture.search.setText("RENDER");
        QCOMPARE(Fixture::names(fixture.search), QStringList{ "renderer" });
        fixture.search.setText("txt");
        const QStringList expected{ "notes.txt", "lab.txt" };
        QCOMPARE(Fixture::names(fixture.search), expected);
    }

    void searchStopsAtThreeHundred()
    {
        Fixture fixture;
        for (int i = 0; i < 350; ++i)
            fixture.addFile("file" + std::to_string(i) + ".dat", 1);
        fixture.scan();
        fixture.search.setShown(true);
        fixture.search.setText("file");
        QCOMPARE(fixture.search.rows()->rowCount(), 300);
    }

    void searchTextIsTheModels()
    {
        Fixture fixture;
        QSignalSpy changes(&fixture.search, &SearchState::textChanged);
        fixture.search.setText("lab");
        QCOMPARE(fixture.model.navigation().searchText(), "lab");
        fixture.model.navigation().setSearchText("film");
        QCOMPARE(fixture.search.text(), "film");
        QCOMPARE(changes.count(), 2);
    }

    void selectingARowMakesItTheSelection()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.largest.select(4);
        QCOMPARE(fixture.model.navigation().selection(), fixture.snapshot("lab.txt"));
    }

    void selectedRowFollowsTheSelection()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        QCOMPARE(fixture.largest.selectedRow(), -1);
        fixture.model.navigation().setSelection(fixture.snapshot("Projects/notes.txt"));
        QCOMPARE(fixture.largest.selectedRow(), 3);
        fixture.model.navigation().setSelection(fixture.snapshot("Projects"));
        QCOMPARE(fixture.largest.selectedRow(), -1);
    }

    void revealShowsTheRawPath()
    {
        Fixture fixture;
        fixture.addFile("odd\xFF.iso", 900);
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.largest.reveal(0);
        QCOMPARE(fixture.desktop.revealer.revealed, std::vector<std::string>{ fixture.path("odd\xFF.iso") });
    }

    void rowOfAnOlderTreeKeepsItsOwnPath()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.largest.setShown(false);
        // A larger file comes first in the new tree, so that the old node numbers mean other items.
        fixture.addFile("Videos/another.mp4", 900);
        fixture.scan();
        fixture.largest.reveal(0);
        QCOMPARE(
            fixture.desktop.revealer.revealed, std::vector<std::string>{ fixture.path("Videos/film.mp4") });
    }

    void rowsOutsideDoNothing()
    {
        Fixture fixture;
        fixture.scan();
        fixture.largest.setShown(true);
        fixture.largest.select(-1);
        fixture.largest.select(5);
        fixture.largest.reveal(5);
        QVERIFY(!fixture.model.navigation().selection());
        QVERIFY(fixture.desktop.revealer.revealed.empty());
    }
};

QUILLBROOK_SUITE(TestNodeTable, QCoreApplication)
#include "tst_NodeTable.moc"
