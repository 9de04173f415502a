#include "Core/AppModel.h"
#include "Support/EndsProcess.h"
#include "Support/FakeServices.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// A model that has scanned a small home folder whole.
struct Scanned : FakeServices
{
    Scanned()
    {
        using Disk = FakeDirectories;
        directories.folder("/home/someone",
            { Disk::aFolder("project"), Disk::aFile("lab.txt", 8192), Disk::aFolder("empty") });
        directories.folder(
            "/home/someone/project", { Disk::aFolder("deep"), Disk::aFile("large.bin", 1'000'000) });
        directories.folder(
            "/home/someone/project/deep", { Disk::aFile("note.txt", 4096), Disk::aFile("\xff.bin", 100) });
        directories.folder("/home/someone/empty", {});
        scan();
    }

    void scan()
    {
        model.scan({ .scope = Scope::complete });
        QTRY_VERIFY(model.phase().kind == Phase::Kind::ready);
    }

    [[nodiscard]] qint32 node(const QString &below) const
    {
        return model.tree()->find(u"/home/someone/"_s + below, model.rootNode());
    }

    [[nodiscard]] NodeSnapshot snapshot(const QString &below) const
    {
        return *model.tree()->snapshot(node(below));
    }

    AppModel model{ services };
};

QStringList names(const QList<NodeSnapshot> &snapshots)
{
    QStringList result;
    for (const auto &snapshot : snapshots)
        result.append(snapshot.name);
    return result;
}

} // namespace

class TestAppModelNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drillIntoAFolderGoesThere();
    void drillIntoAFileSelectsIt();
    void drillIntoAFolderClearsTheSelection();
    void drillIntoNothingSelectsNothing();
    void drillWithoutATreeDoesNothing();
    void popToCutsTheBreadcrumb();
    void popToTheLastPositionOnlyClearsTheSelection();
    void popToBeyondTheEndDoesNothing();
    void popToANegativePositionEndsTheProcess();
    void settersTellOnlyChanges();
    void largestFilesReportTheWholeTreeWhateverTheFocus();
    void searchReportsTheWholeTreeWhateverTheFocus();
    void queriesWithoutATreeFindNothing();
    void searchNeedsTwoCharacters();
    void rawPathKeepsTheBytesOfTheDisk();
    void rawPathOfAnOldSnapshotIsItsText();
};

void TestAppModelNavigation::drillIntoAFolderGoesThere()
{
    Scanned scanned;
    auto &model = scanned.model;
    const QSignalSpy focuses(&model, &AppModel::focusChanged);
    const QSignalSpy breadcrumbs(&model, &AppModel::breadcrumbChanged);
    model.drillInto(scanned.node(u"project"_s));
    model.drillInto(scanned.node(u"project/deep"_s));
    QCOMPARE(model.focus(), scanned.node(u"project/deep"_s));
    QCOMPARE(model.breadcrumb(),
        (QList<qint32>{ model.rootNode(), scanned.node(u"project"_s), scanned.node(u"project/deep"_s) }));
    QCOMPARE(model.breadcrumbNames(), (QStringList{ u"/home/someone"_s, u"project"_s, u"deep"_s }));
    QCOMPARE(focuses.count(), 2);
    QCOMPARE(breadcrumbs.count(), 2);
}

void TestAppModelNavigation::drillIntoAFileSelectsIt()
{
    Scanned scanned;
    auto &model = scanned.model;
    const QSignalSpy focuses(&model, &AppModel::focusChanged);
    const QSignalSpy breadcrumbs(&model, &AppModel::breadcrumbChanged);
    model.drillInto(scanned.node(u"lab.txt"_s));
    QVERIFY(model.selection() == scanned.snapshot(u"lab.txt"_s));
    QCOMPARE(model.selection()->path, u"/home/someone/lab.txt"_s);
    QCOMPARE(model.focus(), model.rootNode());
    QCOMPARE(model.breadcrumb(), QList<qint32>{ model.rootNode() });
    QCOMPARE(model.breadcrumbNames(), QStringList{ u"/home/someone"_s });
    QCOMPARE(focuses.count() + breadcrumbs.count(), 0);
}

void TestAppModelNavigation::drillIntoAFolderClearsTheSelection()
{
    Scanned scanned;
    scanned.model.drillInto(scanned.node(u"lab.txt"_s));
    scanned.model.drillInto(scanned.node(u"project"_s));
    QVERIFY(!scanned.model.selection());
}

void TestAppModelNavigation::drillIntoNothingSelectsNothing()
{
    Scanned scanned;
    for (const auto node : { -1, 1'000'000 }) {
        scanned.model.drillInto(scanned.node(u"lab.txt"_s));
        scanned.model.drillInto(node);
        QVERIFY(!scanned.model.selection());
        QCOMPARE(scanned.model.focus(), scanned.model.rootNode());
    }
}

void TestAppModelNavigation::drillWithoutATreeDoesNothing()
{
    FakeServices fake;
    AppModel model(fake.services);
    const NodeSnapshot selected{ .id = 3, .name = u"x"_s };
    model.setSelection(selected);
    model.drillInto(0);
    QCOMPARE(model.focus(), -1);
    QVERIFY(model.breadcrumb().isEmpty());
    QVERIFY(model.selection() == selected);
}

void TestAppModelNavigation::popToCutsTheBreadcrumb()
{
    Scanned scanned;
    auto &model = scanned.model;
    model.drillInto(scanned.node(u"project"_s));
    model.drillInto(scanned.node(u"project/deep"_s));
    model.drillInto(scanned.node(u"project/deep/note.txt"_s));
    model.popTo(1);
    QCOMPARE(model.focus(), scanned.node(u"project"_s));
    QCOMPARE(model.breadcrumbNames(), (QStringList{ u"/home/someone"_s, u"project"_s }));
    QCOMPARE(model.breadcrumb().size(), 2);
    QVERIFY(!model.selection());
    model.popTo(0);
    QCOMPARE(model.focus(), model.rootNode());
    QCOMPARE(model.breadcrumbNames(), QStringList{ u"/home/someone"_s });
}

void TestAppModelNavigation::popToTheLastPositionOnlyClearsTheSelection()
{
    Scanned scanned;
    auto &model = scanned.model;
    model.drillInto(scanned.node(u"project"_s));
    model.drillInto(scanned.node(u"project/large.bin"_s));
    const QSignalSpy focuses(&model, &AppModel::focusChanged);
    const QSignalSpy breadcrumbs(&model, &AppModel::breadcrumbChanged);
    const QSignalSpy selections(&model, &AppModel::selectionChanged);
    model.popTo(1);
    QVERIFY(!model.selection());
    QCOMPARE(model.focus(), scanned.node(u"project"_s));
    QCOMPARE(model.breadcrumb().size(), 2);
    QCOMPARE(focuses.count() + breadcrumbs.count(), 0);
    QCOMPARE(selections.count(), 1);
}

void TestAppModelNavigation::popToBeyondTheEndDoesNothing()
{
    Scanned scanned;
    auto &model = scanned.model;
    model.drillInto(scanned.node(u"lab.txt"_s));
    for (const qsizetype position : { 1, 2, 1000 }) {
        model.popTo(position);
        QVERIFY(model.selection());
        QCOMPARE(model.breadcrumb().size(), 1);
    }
}

void TestAppModelNavigation::popToANegativePositionEndsTheProcess()
{
    FakeServices fake;
    AppModel model(fake.services);
    QVERIFY(endsProcess([&] { model.popTo(-1); }));
}

void TestAppModelNavigation::settersTellOnlyChanges()
{
    FakeServices fake;
    AppModel model(fake.services);
    const QSignalSpy selections(&model, &AppModel::selectionChanged);
    const QSignalSpy searchTexts(&model, &AppModel::searchTextChanged);
    const QSignalSpy panes(&model, &AppModel::requestedPaneChanged);
    const NodeSnapshot selected{ .id = 3, .name = u"x"_s };
    for (int i = 0; i < 2; ++i) {
        model.setSelection(selected);
        model.setSearchText(u"report"_s);
        model.setRequestedPane(Pane::search);
    }
    QCOMPARE(selections.count(), 1);
    QCOMPARE(searchTexts.count(), 1);
    QCOMPARE(panes.count(), 1);
    QVERIFY(model.selection() == selected);
    QCOMPARE(model.searchText(), u"report"_s);
    QVERIFY(model.requestedPane() == Pane::search);
    model.setSelection(std::nullopt);
    model.setRequestedPane(std::nullopt);
    QCOMPARE(selections.count(), 2);
    QCOMPARE(panes.count(), 2);
}

void TestAppModelNavigation::largestFilesReportTheWholeTreeWhateverTheFocus()
{
    Scanned scanned;
    const QStringList all{ u"large.bin"_s, u"lab.txt"_s, u"note.txt"_s, u"\ufffd.bin"_s };
    QCOMPARE(names(scanned.model.largestFiles(200)), all);
    scanned.model.drillInto(scanned.node(u"empty"_s));
    QCOMPARE(names(scanned.model.largestFiles(200)), all);
    QCOMPARE(names(scanned.model.largestFiles(1)), QStringList{ u"large.bin"_s });
    QVERIFY(scanned.model.largestFiles(0).isEmpty());
}

void TestAppModelNavigation::searchReportsTheWholeTreeWhateverTheFocus()
{
    Scanned scanned;
    scanned.model.drillInto(scanned.node(u"empty"_s));
    QCOMPARE(names(scanned.model.search(u"TXT"_s, 300)), (QStringList{ u"lab.txt"_s, u"note.txt"_s }));
    QCOMPARE(names(scanned.model.search(u"PROJECT"_s, 300)), QStringList{ u"project"_s });
}

void TestAppModelNavigation::queriesWithoutATreeFindNothing()
{
    FakeServices fake;
    const AppModel model(fake.services);
    QVERIFY(model.largestFiles(200).isEmpty());
    QVERIFY(model.search(u"ab"_s, 300).isEmpty());
}

void TestAppModelNavigation::searchNeedsTwoCharacters()
{
    Scanned scanned;
    QVERIFY(scanned.model.search(u"a"_s, 300).isEmpty());
    QCOMPARE(names(scanned.model.search(u"ab"_s, 300)), QStringList{ u"lab.txt"_s });
    QCOMPARE(names(scanned.model.search(u"AB"_s, 300)), QStringList{ u"lab.txt"_s });
}

void TestAppModelNavigation::rawPathKeepsTheBytesOfTheDisk()
{
    Scanned scanned;
    const auto found = scanned.model.search(u"\ufffd.bin"_s, 300);
    QCOMPARE(found.size(), 1);
    QCOMPARE(scanned.model.rawPath(found[0]), std::string("/home/someone/project/deep/\xff.bin"));
    QCOMPARE(scanned.model.rawPath(scanned.snapshot(u"lab.txt"_s)), std::string("/home/someone/lab.txt"));
}

void TestAppModelNavigation::rawPathOfAnOldSnapshotIsItsText()
{
    Scanned scanned;
    // Whatever the node of that number is now, it is not what the snapshot names.
    auto old = scanned.snapshot(u"lab.txt"_s);
    old.path = u"/home/someone/grün.txt"_s;
    QCOMPARE(scanned.model.rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
    old.id = 1'000'000;
    QCOMPARE(scanned.model.rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
    FakeServices fake;
    const AppModel empty(fake.services);
    QCOMPARE(empty.rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
}

QTEST_GUILESS_MAIN(TestAppModelNavigation)
#include "tst_AppModelNavigation.moc"
