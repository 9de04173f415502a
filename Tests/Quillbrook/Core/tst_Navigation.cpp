#include "Core/AppModel.h"
#include "Support/EndsProcess.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

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
        model.scans().scan({ .scope = Scope::complete });
        QTRY_VERIFY(model.scans().phase().kind == Phase::Kind::ready);
    }

    [[nodiscard]] qint32 node(const QString &below) const
    {
        return model.scans().tree()->find(u"/home/someone/"_s + below, model.scans().rootNode());
    }

    [[nodiscard]] NodeSnapshot snapshot(const QString &below) const
    {
        return *model.scans().tree()->snapshot(node(below));
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

class TestNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drillIntoAFolderGoesThere()
    {
        Scanned scanned;
        auto &model = scanned.model;
        const QSignalSpy focuses(&model.navigation(), &Navigation::focusChanged);
        const QSignalSpy breadcrumbs(&model.navigation(), &Navigation::breadcrumbChanged);
        model.navigation().drillInto(scanned.node(u"project"_s));
        model.navigation().drillInto(scanned.node(u"project/deep"_s));
        QCOMPARE(model.navigation().focus(), scanned.node(u"project/deep"_s));
        QCOMPARE(model.navigation().breadcrumb(),
            (QList<qint32>{
                model.scans().rootNode(), scanned.node(u"project"_s), scanned.node(u"project/deep"_s) }));
        QCOMPARE(model.navigation().breadcrumbNames(),
            (QStringList{ u"/home/someone"_s, u"project"_s, u"deep"_s }));
        QCOMPARE(focuses.count(), 2);
        QCOMPARE(breadcrumbs.count(), 2);
    }

    void drillIntoAFileSelectsIt()
    {
        Scanned scanned;
        auto &model = scanned.model;
        const QSignalSpy focuses(&model.navigation(), &Navigation::focusChanged);
        const QSignalSpy breadcrumbs(&model.navigation(), &Navigation::breadcrumbChanged);
        model.navigation().drillInto(scanned.node(u"lab.txt"_s));
        QVERIFY(model.navigation().selection() == scanned.snapshot(u"lab.txt"_s));
        QCOMPARE(model.navigation().selection()->path, u"/home/someone/lab.txt"_s);
        QCOMPARE(model.navigation().focus(), model.scans().rootNode());
        QCOMPARE(model.navigation().breadcrumb(), QList<qint32>{ model.scans().rootNode() });
        QCOMPARE(model.navigation().breadcrumbNames(), QStringList{ u"/home/someone"_s });
        QCOMPARE(focuses.count() + breadcrumbs.count(), 0);
    }

    void drillIntoAFolderClearsTheSelection()
    {
        Scanned scanned;
        scanned.model.navigation().drillInto(scanned.node(u"lab.txt"_s));
        scanned.model.navigation().drillInto(scanned.node(u"project"_s));
        QVERIFY(!scanned.model.navigation().selection());
    }

    void drillIntoNothingSelectsNothing()
    {
        Scanned scanned;
        for (const auto node : { -1, 1'000'000 }) {
            scanned.model.navigation().drillInto(scanned.node(u"lab.txt"_s));
            scanned.model.navigation().drillInto(node);
            QVERIFY(!scanned.model.navigation().selection());
            QCOMPARE(scanned.model.navigation().focus(), scanned.model.scans().rootNode());
        }
    }

    void drillWithoutATreeDoesNothing()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const NodeSnapshot selected{ .id = 3, .name = u"x"_s };
        model.navigation().setSelection(selected);
        model.navigation().drillInto(0);
        QCOMPARE(model.navigation().focus(), -1);
        QVERIFY(model.navigation().breadcrumb().isEmpty());
        QVERIFY(model.navigation().selection() == selected);
    }

    void popToCutsTheBreadcrumb()
    {
        Scanned scanned;
        auto &model = scanned.model;
        model.navigation().drillInto(scanned.node(u"project"_s));
        model.navigation().drillInto(scanned.node(u"project/deep"_s));
        model.navigation().drillInto(scanned.node(u"project/deep/note.txt"_s));
        model.navigation().popTo(1);
        QCOMPARE(model.navigation().focus(), scanned.node(u"project"_s));
        QCOMPARE(model.navigation().breadcrumbNames(), (QStringList{ u"/home/someone"_s, u"project"_s }));
        QCOMPARE(model.navigation().breadcrumb().size(), 2);
        QVERIFY(!model.navigation().selection());
        model.navigation().popTo(0);
        QCOMPARE(model.navigation().focus(), model.scans().rootNode());
        QCOMPARE(model.navigation().breadcrumbNames(), QStringList{ u"/home/someone"_s });
    }

    void popToTheLastPositionOnlyClearsTheSelection()
    {
        Scanned scanned;
        auto &model = scanned.model;
        model.navigation().drillInto(scanned.node(u"project"_s));
        model.navigation().drillInto(scanned.node(u"project/large.bin"_s));
        const QSignalSpy focuses(&model.navigation(), &Navigation::focusChanged);
        const QSignalSpy breadcrumbs(&model.navigation(), &Navigation::breadcrumbChanged);
        const QSignalSpy selections(&model.navigation(), &Navigation::selectionChanged);
        model.navigation().popTo(1);
        QVERIFY(!model.navigation().selection());
        QCOMPARE(model.navigation().focus(), scanned.node(u"project"_s));
        QCOMPARE(model.navigation().breadcrumb().size(), 2);
        QCOMPARE(focuses.count() + breadcrumbs.count(), 0);
        QCOMPARE(selections.count(), 1);
    }

    void popToBeyondTheEndDoesNothing()
    {
        Scanned scanned;
        auto &model = scanned.model;
        model.navigation().drillInto(scanned.node(u"lab.txt"_s));
        for (const qsizetype position : { 1, 2, 1000 }) {
            model.navigation().popTo(position);
            QVERIFY(model.navigation().selection());
            QCOMPARE(model.navigation().breadcrumb().size(), 1);
        }
    }

    void popToANegativePositionEndsTheProcess()
    {
        FakeServices fake;
        AppModel model(fake.services);
        QVERIFY(endsProcess([&] { model.navigation().popTo(-1); }));
    }

    void settersTellOnlyChanges()
    {
        FakeServices fake;
        AppModel model(fake.services);
        const QSignalSpy selections(&model.navigation(), &Navigation::selectionChanged);
        const QSignalSpy searchTexts(&model.navigation(), &Navigation::searchTextChanged);
        const QSignalSpy panes(&model.navigation(), &Navigation::requestedPaneChanged);
        const NodeSnapshot selected{ .id = 3, .name = u"x"_s };
        for (int i = 0; i < 2; ++i) {
            model.navigation().setSelection(selected);
            model.navigation().setSearchText(u"report"_s);
            model.navigation().setRequestedPane(Pane::search);
        }
        QCOMPARE(selections.count(), 1);
        QCOMPARE(searchTexts.count(), 1);
        QCOMPARE(panes.count(), 1);
        QVERIFY(model.navigation().selection() == selected);
        QCOMPARE(model.navigation().searchText(), u"report"_s);
        QVERIFY(model.navigation().requestedPane() == Pane::search);
        model.navigation().setSelection(std::nullopt);
        model.navigation().setRequestedPane(std::nullopt);
        QCOMPARE(selections.count(), 2);
        QCOMPARE(panes.count(), 2);
    }

    void largestFilesReportTheWholeTreeWhateverTheFocus()
    {
        Scanned scanned;
        const QStringList all{ u"large.bin"_s, u"lab.txt"_s, u"note.txt"_s, u"\ufffd.bin"_s };
        QCOMPARE(names(scanned.model.navigation().largestFiles(200)), all);
        scanned.model.navigation().drillInto(scanned.node(u"empty"_s));
        QCOMPARE(names(scanned.model.navigation().largestFiles(200)), all);
        QCOMPARE(names(scanned.model.navigation().largestFiles(1)), QStringList{ u"large.bin"_s });
        QVERIFY(scanned.model.navigation().largestFiles(0).isEmpty());
    }

    void searchReportsTheWholeTreeWhateverTheFocus()
    {
        Scanned scanned;
        scanned.model.navigation().drillInto(scanned.node(u"empty"_s));
        QCOMPARE(names(scanned.model.navigation().search(u"TXT"_s, 300)),
            (QStringList{ u"lab.txt"_s, u"note.txt"_s }));
        QCOMPARE(names(scanned.model.navigation().search(u"PROJECT"_s, 300)), QStringList{ u"project"_s });
    }

    void queriesWithoutATreeFindNothing()
    {
        FakeServices fake;
        const AppModel model(fake.services);
        QVERIFY(model.navigation().largestFiles(200).isEmpty());
        QVERIFY(model.navigation().search(u"ab"_s, 300).isEmpty());
    }

    void searchNeedsTwoCharacters()
    {
        Scanned scanned;
        QVERIFY(scanned.model.navigation().search(u"a"_s, 300).isEmpty());
        QCOMPARE(names(scanned.model.navigation().search(u"ab"_s, 300)), QStringList{ u"lab.txt"_s });
        QCOMPARE(names(scanned.model.navigation().search(u"AB"_s, 300)), QStringList{ u"lab.txt"_s });
    }

    void rawPathKeepsTheBytesOfTheDisk()
    {
        Scanned scanned;
        const auto found = scanned.model.navigation().search(u"\ufffd.bin"_s, 300);
        QCOMPARE(found.size(), 1);
        QCOMPARE(
            scanned.model.navigation().rawPath(found[0]), std::string("/home/someone/project/deep/\xff.bin"));
        QCOMPARE(scanned.model.navigation().rawPath(scanned.snapshot(u"lab.txt"_s)),
            std::string("/home/someone/lab.txt"));
    }

    void rawPathOfAnOldSnapshotIsItsText()
    {
        Scanned scanned;
        // Whatever the node of that number is now, it is not what the snapshot names.
        auto old = scanned.snapshot(u"lab.txt"_s);
        old.path = u"/home/someone/grün.txt"_s;
        QCOMPARE(scanned.model.navigation().rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
        old.id = 1'000'000;
        QCOMPARE(scanned.model.navigation().rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
        FakeServices fake;
        const AppModel empty(fake.services);
        QCOMPARE(empty.navigation().rawPath(old), std::string("/home/someone/gr\xc3\xbcn.txt"));
    }
};

QUILLBROOK_SUITE(TestNavigation, QCoreApplication)
#include "tst_Navigation.moc"
