// What the screen "Apps" says, and what its buttons do.

#include "Core/AppModel.h"
#include "Screens/Apps/AppsState.h"
#include "Screens/Apps/AppsWords.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const InstalledApp aurora{ .app = { .path = "/apps/aurora",
                               .name = u"Aurora Studio"_s,
                               .bundleID = u"org.aurora"_s,
                               .version = u"4.2.1"_s,
                               .bytes = 5'000'000 },
    .origin = AppOrigin::appImage,
    .goes = { "/apps/aurora" },
    .isMeasured = true };
const InstalledApp lantern{ .app
    = { .path = "/apps/lantern", .name = u"Lantern"_s, .bundleID = u"org.lantern"_s, .bytes = 9'000'000 },
    .origin = AppOrigin::flatpakOfUser,
    .originName = u"flathub"_s,
    .isMeasured = true };

FoundOrphan orphan(const std::string &path, qint64 bytes)
{
    return { .orphan = { .path = path,
                 .bundleID = u"com.gone.my-tool"_s,
                 .kind = LeftoverKind::cache,
                 .bytes = bytes,
                 .lastModified = QDateTime(QDate(2023, 6, 1), QTime(), Qt::UTC) },
        .newestInside = QDateTime(QDate(2023, 5, 1), QTime(), Qt::UTC),
        .isInHostPlace = true };
}

struct Fixture : FakeServices
{
    std::unique_ptr<AppModel> model;
    std::unique_ptr<AppsState> state;

    Fixture()
    {
        auto flatpak = lantern;
        flatpak.app.fromAppStore = true;
        applications.apps = { aurora, flatpak };
        applications.found = { orphan("/home/someone/.cache/com.gone.my-tool", 3'000'000),
            orphan("/home/someone/.config/com.gone.my-tool", 2'000'000) };
        applications.plans[u"org.aurora"_s] = { .leftovers
            = { { .path = "/l/org.aurora", .kind = LeftoverKind::supportFiles, .bytes = 2'000'000 },
                { .path = "/etc/aurora",
                    .kind = LeftoverKind::systemWide,
                    .bytes = 50'000,
                    .needsAdministrator = true },
                { .path = "/c/org.aurora", .kind = LeftoverKind::cache, .bytes = 1'000'000 } } };
        model = std::make_unique<AppModel>(services);
        state = std::make_unique<AppsState>(*model);
    }

    void load()
    {
        state->setShown(true);
        settled();
    }
    void settled() const { QTRY_VERIFY(!state->store().isLoading()); }
    void open(const QString &name) const
    {
        for (int row = 0; row < state->rows()->rowCount(); ++row)
            if (appRow(row).name == name)
                state->askToUninstall(row);
        QVERIFY(state->sheet()->isOpen());
        QTRY_VERIFY(state->sheet()->isPlanned());
    }
    [[nodiscard]] AppRow appRow(int row) const
    {
        return state->rows()->index(row).data(Qt::UserRole).value<AppRow>();
    }
    [[nodiscard]] static LeftoverRow leftoverRow(AppsListModel *rows, int row)
    {
        return rows->index(row).data(Qt::UserRole).value<LeftoverRow>();
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList names;
        for (int row = 0; row < state->rows()->rowCount(); ++row)
            names.append(appRow(row).name);
        return names;
    }
};

} // namespace

class TestAppsState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsTellOfApplications()
    {
        Fixture fixture;
        const QAbstractItemModelTester tester(
            fixture.state->rows(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(fixture.state->emptyMessage(), u"No applications found."_s);
        fixture.load();
        QCOMPARE(fixture.names(), (QStringList{ u"Lantern"_s, u"Aurora Studio"_s }));
        QCOMPARE(fixture.appRow(0).tag, u"flathub"_s);
        QCOMPARE(fixture.appRow(1).spoken, u"Aurora Studio, 4.2.1, 4.8 MB"_s);
        QCOMPARE(fixture.state->emptyMessage(), QString());
        QCOMPARE(fixture.state->progress(), QString());
        fixture.state->reveal(1);
        QCOMPARE(fixture.desktop.revealer.revealed, std::vector<std::string>{ "/apps/aurora" });
    }

    void filterFindsNamesInAnyLetterCase_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<int>("count");
        QTest::newRow("nothing") << QString() << 2;
        QTest::newRow("blanks") << u"  \t "_s << 2;
        QTest::newRow("a part in capitals") << u" STUDIO"_s << 1;
        QTest::newRow("a letter and its accent") << u"Te\u0301"_s << 1;
        QTest::newRow("nobody's") << u"xyz"_s << 0;
    }
    void filterFindsNamesInAnyLetterCase()
    {
        QFETCH(QString, filter);
        Fixture fixture;
        if (filter.startsWith(u'T'))
            fixture.applications.apps[1].app.name = u"Lant\u00e9rn"_s;
        fixture.load();
        fixture.state->setFilter(filter);
        QTEST(fixture.state->rows()->rowCount(), "count");
        QCOMPARE(fixture.state->emptyMessage().isEmpty(), fixture.state->rows()->rowCount() > 0);
    }

    void tagsAndSizesAreTold_data()
    {
        QTest::addColumn<InstalledApp>("app");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("origin");
        const auto keep = u"Keep the installer if you might want it back."_s;
        auto bundle = aurora;
        bundle.origin = AppOrigin::bundle;
        QTest::newRow("of a bundle") << bundle << QString() << keep;
        bundle.app.fromAppStore = true;
        QTest::newRow("of the store")
            << bundle << u"App Store"_s << u"From the App Store — you can reinstall it any time, free."_s;
        auto flatpak = lantern;
        flatpak.app.fromAppStore = true;
        QTest::newRow("of a remote") << flatpak << u"flathub"_s
                                     << u"From flathub — you can install it again any time."_s;
        flatpak.originName.clear();
        QTest::newRow("of no remote")
            << flatpak << u"Flatpak"_s << u"From Flatpak — you can install it again any time."_s;
        QTest::newRow("of an AppImage") << aurora << QString() << keep;
    }
    void tagsAndSizesAreTold()
    {
        QFETCH(InstalledApp, app);
        QTEST(AppsWords::row(app).tag, "tag");
        QTEST(AppsWords::origin(app), "origin");
        app.isMeasured = false;
        QCOMPARE(AppsWords::row(app).size, u"–"_s);
        app.originName = u"suite"_s;
        app.sharesPackage = true;
        QVERIFY(AppsWords::row(app).detail.endsWith(u"size of the whole package suite"_s));
        app.app.name = u"A\u202eB\nC"_s;
        QCOMPARE(AppsWords::row(app).name, u"A B C"_s);
    }

    void sheetTellsWhatGoes()
    {
        Fixture fixture;
        fixture.load();
        auto &sheet = *fixture.state->sheet();
        fixture.open(u"Aurora Studio"_s);
        QCOMPARE(sheet.title(), u"Uninstall Aurora Studio"_s);
        QCOMPARE(sheet.heading(), u"AND 2 OTHER PLACES IT WROTE TO"_s);
        QCOMPARE(sheet.lockedHeading(), u"LEFT ALONE — THESE NEED AN ADMINISTRATOR"_s);
        QCOMPARE(sheet.itselfSize(), u"4.8 MB"_s);
        QCOMPARE(sheet.total(), u"7.6 MB goes to the Trash"_s);
        QCOMPARE(sheet.confirmTitle(), u"Uninstall Aurora Studio?"_s);
        QCOMPARE(sheet.confirmMessage(),
            u"Everything ticked goes to the Trash, so it can be put back. The space comes back when the "
            u"Trash is emptied — Quillbrook will offer to do that for just these items."_s);
        QCOMPARE(sheet.confirmAction(), u"Move to Trash"_s);
        const auto row = Fixture::leftoverRow(sheet.rows(), 0);
        QVERIFY(row.isTicked && !row.isLocked);
        QCOMPARE(row.title, u"Application support"_s);
        QCOMPARE(row.evidence,
            u"It is named after org.aurora, and nothing else that is listed here could claim it."_s);
        QVERIFY(Fixture::leftoverRow(sheet.lockedRows(), 0).isLocked);
        sheet.toggleEvidence(0, true);
        QVERIFY(Fixture::leftoverRow(sheet.lockedRows(), 0).isOpen);

        sheet.toggle(0);
        sheet.toggle(1);
        QCOMPARE(sheet.total(), u"4.8 MB goes to the Trash"_s);
        QVERIFY(sheet.canUninstall());
        sheet.dismiss();
        QVERIFY(!sheet.isOpen());
    }

    void leftoversTellWhatTheyAreNamedAfter_data()
    {
        QTest::addColumn<std::string>("path");
        QTest::addColumn<QString>("key");
        QTest::newRow("the identifier") << std::string("/l/org.aurora") << u"org.aurora"_s;
        QTest::newRow("the name") << std::string("/c/aurora studio") << u"Aurora Studio"_s;
        QTest::newRow("the program") << std::string("/c/aurorarc") << u"aurora"_s;
        QTest::newRow("the longest of them") << std::string("/c/org.aurora.conf") << u"org.aurora"_s;
    }
    void leftoversTellWhatTheyAreNamedAfter()
    {
        QFETCH(std::string, path);
        QFETCH(QString, key);
        auto app = aurora;
        app.programName = u"aurora"_s;
        QCOMPARE(AppsWords::evidence({ .path = path }, app),
            u"It is named after %1, and nothing else that is listed here could claim it."_s.arg(key));
        app.origin = AppOrigin::bundle;
        QCOMPARE(AppsWords::evidence({ .path = path }, app), u"It is named after %1."_s.arg(key));
    }

    void headingsCountWhatCanGo_data()
    {
        QTest::addColumn<int>("removable");
        QTest::addColumn<int>("locked");
        QTest::addColumn<QString>("heading");
        QTest::addColumn<QString>("nothingElse");
        QTest::newRow("nothing") << 0 << 0 << QString()
                                 << u"It left nothing else behind — unusual, and good."_s;
        QTest::newRow("one") << 1 << 0 << u"AND 1 OTHER PLACE IT WROTE TO"_s << QString();
        QTest::newRow("only locked") << 0 << 1 << QString() << QString();
    }
    void headingsCountWhatCanGo()
    {
        QFETCH(int, removable);
        QFETCH(int, locked);
        Fixture fixture;
        Plan plan;
        for (int count = 0; count < removable + locked; ++count)
            plan.leftovers.push_back({ .path = "/p" + std::to_string(count),
                .bytes = 7,
                .needsAdministrator = count >= removable });
        fixture.applications.plans[u"org.aurora"_s] = plan;
        fixture.load();
        fixture.open(u"Aurora Studio"_s);
        QTEST(fixture.state->sheet()->heading(), "heading");
        QTEST(fixture.state->sheet()->nothingElse(), "nothingElse");
        QCOMPARE(fixture.state->sheet()->lockedHeading().isEmpty(), locked == 0);
        if (removable == 0)
            QCOMPARE(fixture.state->sheet()->total(), u"4.8 MB goes to the Trash"_s);
    }

    void aFlatpakIsRemovedForGood()
    {
        Fixture fixture;
        fixture.applications.apps[1].runtimes = { u"runtime/a/b/c"_s };
        // An empty file of settings is no bytes, and goes to the Trash all the same.
        fixture.applications.plans[u"org.lantern"_s]
            = { .leftovers = { { .path = "/p", .kind = LeftoverKind::preferences } } };
        fixture.load();
        fixture.open(u"Lantern"_s);
        auto &sheet = *fixture.state->sheet();
        const QSignalSpy changes(&sheet, &UninstallSheetState::changed);
        QCOMPARE(sheet.total(), u"0 B goes to the Trash, 8.6 MB is removed for good"_s);
        QCOMPARE(sheet.confirmMessage(),
            u"Everything ticked goes to the Trash, so it can be put back. The app itself is removed for "
            u"good, "
            "and can be installed again."_s);
        QCOMPARE(sheet.confirmAction(), u"Uninstall"_s);
        // Then nothing goes to the Trash.
        sheet.toggle(0);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(sheet.total(), u"8.6 MB is removed for good"_s);
        QCOMPARE(
            sheet.confirmMessage(), u"The app itself is removed for good, and can be installed again."_s);
        QVERIFY(sheet.itself().endsWith(u"Its runtime, 4.0 KB, stays, though nothing else here uses it."_s));
    }

    void whatIsBlockedSaysWhy()
    {
        Fixture fixture;
        fixture.applications.apps[0].origin = AppOrigin::package;
        fixture.applications.apps[0].componentId = u"org.aurora.desktop"_s;
        fixture.applications.plans[u"org.aurora"_s] = { .blocked = u"It stays."_s };
        fixture.load();
        fixture.open(u"Aurora Studio"_s);
        auto &sheet = *fixture.state->sheet();
        QCOMPARE(sheet.blocked(), u"It stays."_s);
        QVERIFY(!sheet.canUninstall());
        QCOMPARE(sheet.total(), QString());
        QVERIFY(sheet.hasStorePage());
        sheet.openStorePage();
        QCOMPARE(fixture.desktop.links.opened, QList<QUrl>{ QUrl(u"appstream:org.aurora.desktop"_s) });
        sheet.uninstall();
        QVERIFY(!sheet.isWorking());
    }

    void uninstallingTakesWhatIsTickedAndLoadsAgain()
    {
        Fixture fixture;
        fixture.load();
        fixture.open(u"Aurora Studio"_s);
        auto &sheet = *fixture.state->sheet();
        sheet.toggle(1);
        sheet.uninstall();
        QVERIFY(sheet.isWorking() && !sheet.canUninstall());
        QCOMPARE(sheet.action(), u"Removing…"_s);
        // Neither another sheet nor the end of this one comes between.
        fixture.state->askToUninstall(0);
        sheet.dismiss();
        QVERIFY(sheet.isOpen());
        QTRY_VERIFY(!sheet.isOpen());
        QTRY_COMPARE(fixture.applications.listings.load(), 2);
        fixture.settled();
        // Nothing of it is on the made-up disk, of which each path is told.
        QCOMPARE(fixture.state->log().count(u'\n'), 1);
        QVERIFY(fixture.state->log().contains(u"Aurora Studio · Application support is not there"_s));
        QVERIFY(!fixture.state->log().contains(u"Cache"_s));
    }

    // Whoever named it could add a line to what was done, or turn it around.
    void namesStayInTheirLineOfTheLog()
    {
        Fixture fixture;
        fixture.applications.apps.front().app.name = u"Aurora\n\u202EStudio"_s;
        fixture.load();
        fixture.open(u"Aurora  Studio"_s);
        fixture.state->sheet()->uninstall();
        QTRY_VERIFY(!fixture.state->log().isEmpty());
        QVERIFY2(fixture.state->log().contains(u"Aurora  Studio"_s), qPrintable(fixture.state->log()));
        QVERIFY(!fixture.state->log().contains(u'\u202E'));
    }

    void orphansAreTickedByHand()
    {
        Fixture fixture;
        QVERIFY(fixture.state->orphansMessage().startsWith(u"Nothing here — every reverse-DNS folder"_s));
        fixture.load();
        auto &state = *fixture.state;
        QCOMPARE(state.orphans()->rowCount(), 2);
        QVERIFY(!state.hasChosen());
        const auto row = Fixture::leftoverRow(state.orphans(), 0);
        QCOMPARE(row.title, u"My Tool"_s);
        QCOMPARE(row.note, u"Cache · Last changed over a year ago"_s);
        QCOMPARE(row.path, u"~/.cache/com.gone.my-tool"_s);
        QCOMPARE(row.evidence.count(u'\n'), 6);
        QVERIFY(row.evidence.contains(u"com.gone.my-tool"_s));
        state.toggleEvidence(0);
        QVERIFY(Fixture::leftoverRow(state.orphans(), 0).isOpen);
        state.toggleOrphan(0);
        QCOMPARE(state.chosenCount(), u"1 selected"_s);
        QCOMPARE(state.confirmTitle(), u"Move 1 leftover item to the Trash?"_s);
        state.toggleOrphan(1);
        QCOMPARE(state.confirmTitle(), u"Move 2 leftover items to the Trash?"_s);
        QCOMPARE(state.chosenSize(), u"4.8 MB"_s);
        state.clearChosen();
        QVERIFY(!state.hasChosen());
    }

    void removingOrphansEmptiesTheTicksAndLoadsAgain()
    {
        Fixture fixture;
        fixture.load();
        fixture.state->toggleOrphan(1);
        fixture.state->removeChosen();
        QVERIFY(fixture.state->isRemoving());
        QTRY_VERIFY(!fixture.state->isRemoving());
        QVERIFY(!fixture.state->hasChosen());
        QTRY_COMPARE(fixture.applications.listings.load(), 2);
        fixture.settled();
    }

    void measuringCanBeStopped()
    {
        Fixture fixture;
        for (auto &app : fixture.applications.apps)
            app.isMeasured = false;
        auto &state = *fixture.state;
        state.setShown(true);
        QVERIFY(state.isLoading());
        QCOMPARE(state.loadAction(), u"Stop"_s);
        state.stopOrGoOn();
        QVERIFY(state.isStopped() && !state.isLoading());
        QCOMPARE(state.emptyMessage(), u"Stopped before any application was found."_s);
        QCOMPARE(state.loadAction(), u"Go on"_s);
        QCOMPARE(state.progress(), u"Stopped before all was measured."_s);
        QCOMPARE(state.orphansMessage(), u"Stopped before it was known what removed apps left behind."_s);
        state.stopOrGoOn();
        fixture.settled();
        QVERIFY(!state.isStopped());
        QCOMPARE(state.progress(), QString());
        QCOMPARE(state.orphans()->rowCount(), 2);
    }

    void leavingTheScreenEndsTheMeasuring()
    {
        Fixture fixture;
        fixture.state->setShown(true);
        fixture.state->setShown(false);
        QVERIFY(!fixture.state->isLoading());
        fixture.load();
        QCOMPARE(fixture.names().size(), 2);
        QCOMPARE(fixture.state->orphans()->rowCount(), 2);
    }

    void whatWasChosenIsLostWithThePane()
    {
        Fixture fixture;
        fixture.load();
        fixture.state->setTab(1);
        fixture.state->setFilter(u"x"_s);
        fixture.state->toggleOrphan(0);
        fixture.state->setShown(false);
        QCOMPARE(fixture.state->tab(), 0);
        QCOMPARE(fixture.state->filter(), QString());
        QVERIFY(!fixture.state->hasChosen());
    }
};

QUILLBROOK_SUITE(TestAppsState, QCoreApplication)
#include "tst_AppsState.moc"
