// Which files are an application's own, and which applications must stay.

#include "Removal/HostGuards.h"
#include "Support/BundleTree.h"
#include "Support/Suite.h"
#include "Uninstaller/LeftoverLocations.h"

#include <algorithm>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const AppBundle app{
    .path = "/Applications/Maker.app", .name = u"Maker App"_s, .bundleID = u"com.maker.app"_s, .bytes = 1000
};

struct Machine : BundleTree
{
    [[nodiscard]] Plan plan(const AppBundle &of = app) const
    {
        return Uninstaller::plan(
            services(), { .app = of, .measure = measure(), .home = home(), .library = path("Library") });
    }
    // Below the root, with the kind.
    [[nodiscard]] QStringList found(const AppBundle &of = app) const
    {
        QStringList paths;
        for (const auto &leftover : plan(of).leftovers)
            paths.append(QString::fromStdString(leftover.path.substr(tree.path().size() + 1)) + u" | "_s
                + leftover.label());
        paths.sort();
        return paths;
    }
};

} // namespace

class TestUninstallPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindsHaveTheirWords()
    {
        using enum LeftoverKind;
        const std::vector<LeftoverKindRow> told{
            { container, u"Container"_s,
                u"Everything the app saved for itself — settings, logins, and any documents it kept inside itself rather than in your folders."_s },
            { groupContainer, u"Shared container"_s,
                u"Shared with the app's extensions and helpers. Removed only if no other app you have is using it."_s },
            { supportFiles, u"Application support"_s,
                u"Databases, downloaded extras and templates the app made as you used it."_s },
            { cache, u"Cache"_s,
                u"Temporary files kept to make the app start faster. Nothing here is yours."_s },
            { preferences, u"Preferences"_s,
                u"The app's settings. Tiny, but the reason a reinstalled app still remembers everything."_s },
            { savedState, u"Saved windows"_s, u"Which windows were open, and where."_s },
            { webStorage, u"Web data"_s, u"Cookies and site data from web pages shown inside the app."_s },
            { logs, u"Logs"_s, u"Diagnostic text the app wrote while running."_s },
            { cookies, u"Cookies"_s, u"Sign-in cookies belonging to the app."_s },
            { launchItem, u"Opens at login"_s,
                u"An instruction to start this app when you log in. Left behind, it tries to launch something that is no longer there."_s },
            { scripts, u"Automation scripts"_s, u"Scripts the app was allowed to run on your behalf."_s },
            { systemWide, u"Installed for all users"_s,
                u"Installed for every account on this Mac. Quillbrook can show it but cannot remove it — that needs an administrator."_s },
        };
        QCOMPARE(leftoverKinds().size(), told.size());
        for (size_t index = 0; index < told.size(); ++index) {
            const auto &row = told[index];
            QCOMPARE(leftoverKinds()[index].kind, row.kind);
            QCOMPARE(Leftover{ .kind = row.kind }.label(), row.rawValue);
            QCOMPARE(explanation(row.kind), row.explanation);
        }
    }

    void refusalsAreTestedInOrder_data()
    {
        QTest::addColumn<AppBundle>("app");
        QTest::addColumn<int>("running");
        QTest::addColumn<QString>("sentence");
        auto system = app;
        system.isSystem = true;
        auto nameless = app;
        nameless.bundleID.clear();
        auto both = nameless;
        both.isSystem = true;
        auto guarded = app;
        guarded.path = "/usr/Maker.app";
        const auto systemSentence
            = u"Maker App came with macOS. Removing it would break parts of the system, so Quillbrook leaves it alone."_s;
        QTest::newRow("the system's, and it runs") << system << 1 << systemSentence;
        QTest::newRow("the system's without an identifier") << both << 0 << systemSentence;
        QTest::newRow("without an identifier")
            << nameless << 1
            << u"Maker App has no identifier, so there is no safe way to tell which leftover files are its. Quillbrook will not guess."_s;
        QTest::newRow("it runs")
            << guarded << 1
            << u"Maker App is running. Quit it first — uninstalling an app while it is open leaves files behind and can lose unsaved work."_s;
        QTest::newRow("nobody knows whether it runs")
            << app << -1
            << u"Quillbrook can't tell whether Maker App is running, and leaves it alone until it can."_s;
        QTest::newRow("its path is guarded") << guarded << 0 << QString();
    }
    void refusalsAreTestedInOrder()
    {
        QFETCH(AppBundle, app);
        QFETCH(int, running);
        QFETCH(QString, sentence);
        Machine machine;
        machine.running.answer = running < 0 ? std::nullopt : std::optional(running == 1);
        machine.tree.file("home/Library/Caches/com.maker.app", 10);
        const auto plan = machine.plan(app);
        QVERIFY(plan.blocked);
        if (sentence.isEmpty())
            QVERIFY(plan.blocked->contains(u"/usr"_s));
        else
            QCOMPARE(*plan.blocked, sentence);
        QVERIFY(plan.leftovers.empty());
        QVERIFY(machine.measured.empty());
        QCOMPARE(plan.totalBytes(), app.bytes);
    }

    void sentencesAreWordedBeforeNamesAreFilledIn()
    {
        Machine machine;
        machine.running.answer = true;
        auto services = machine.services();
        services.wording = [](const QString &sentence) { return u"<"_s + sentence.left(6) + u">"_s; };
        const auto plan = Uninstaller::plan(
            services, { .app = app, .measure = machine.measure(), .home = machine.home() });
        QCOMPARE(plan.blocked, std::optional(u"<Maker App>"_s));
    }

    void tableHasTheTwentyPlaces()
    {
        const auto table = LeftoverLocations::locations("/h");
        QStringList rows;
        for (const auto &row : table)
            rows.append(QString::fromStdString(row.directory) + u'|' + rawValue(row.kind) + u'|'
                + QString::fromStdString(row.suffix) + (row.byName ? u"|name"_s : QString())
                + (row.needsAdministrator ? u"|admin"_s : QString()));
        QCOMPARE(rows,
            (QStringList{ u"/h/Library/Containers|Container|"_s,
                u"/h/Library/Application Support|Application support|"_s,
                u"/h/Library/Application Support|Application support||name"_s, u"/h/Library/Caches|Cache|"_s,
                u"/h/Library/Caches|Cache||name"_s, u"/h/Library/Preferences|Preferences|.plist"_s,
                u"/h/Library/Preferences/ByHost|Preferences|.plist"_s,
                u"/h/Library/Saved Application State|Saved windows|.savedState"_s,
                u"/h/Library/HTTPStorages|Web data|"_s, u"/h/Library/HTTPStorages|Web data|.binarycookies"_s,
                u"/h/Library/WebKit|Web data|"_s, u"/h/Library/Logs|Logs||name"_s, u"/h/Library/Logs|Logs|"_s,
                u"/h/Library/Cookies|Cookies|.binarycookies"_s,
                u"/h/Library/LaunchAgents|Opens at login|.plist"_s,
                u"/h/Library/Application Scripts|Automation scripts|"_s,
                u"/Library/Application Support|Installed for all users||name|admin"_s,
                u"/Library/LaunchAgents|Opens at login|.plist|admin"_s,
                u"/Library/LaunchDaemons|Opens at login|.plist|admin"_s,
                u"/Library/PrivilegedHelperTools|Installed for all users||admin"_s }));
    }

    void everyPlaceIsSearched()
    {
        const Machine machine;
        for (const auto &row : LeftoverLocations::locations(machine.home(), machine.path("Library"))) {
            const auto key = row.byName ? app.name.toStdString() : app.bundleID.toStdString();
            machine.tree.file(
                (row.directory + '/' + key + row.suffix).substr(machine.tree.path().size() + 1), 10);
        }
        QCOMPARE(machine.plan().leftovers.size(), size_t(20));
        QCOMPARE(machine.plan().removableLeftovers().size(), size_t(16));
        QCOMPARE(machine.plan().totalBytes(), qint64(1160));
    }

    void namesThatAreOnlyAlikeAreNotTaken()
    {
        const Machine machine;
        for (const auto *name : { "Preferences/ByHost/com.maker.app.0A1B2C.plist",
                 "Preferences/ByHost/com.maker.application.0A1B2C.plist",
                 "Preferences/ByHost/com.maker.app.0A1B2C.txt", "LaunchAgents/com.maker.application.plist",
                 "LaunchAgents/com.maker.app.helper.plist", "LaunchAgents/org.maker.app.plist",
                 "Group Containers/ABCDE12345.com.maker.app", "Group Containers/group.com.maker.app",
                 "Group Containers/group.com.maker", "Group Containers/group.com.maker.app.extra",
                 "Containers/com.maker.app.helper", "Caches/com.maker.application" })
            machine.tree.file(std::string("home/Library/") + name, 10);
        QCOMPARE(machine.found(),
            (QStringList{ u"home/Library/Group Containers/ABCDE12345.com.maker.app | Shared container"_s,
                u"home/Library/Group Containers/group.com.maker.app | Shared container"_s,
                u"home/Library/LaunchAgents/com.maker.app.helper.plist | Opens at login"_s,
                u"home/Library/LaunchAgents/com.maker.application.plist | Opens at login"_s,
                u"home/Library/Preferences/ByHost/com.maker.app.0A1B2C.plist | Preferences"_s }));
    }

    void aPathThatTwoPlacesFindCountsOnce()
    {
        const Machine machine;
        auto alike = app;
        alike.name = alike.bundleID;
        machine.tree.file("home/Library/Logs/com.maker.app/log", 10);
        QCOMPARE(machine.found(alike), QStringList{ u"home/Library/Logs/com.maker.app | Logs"_s });
        QCOMPARE(machine.measured.size(), size_t(1));
    }

    void emptyThingsAreDroppedUnlessTheyTellByBeingThere()
    {
        const Machine machine;
        machine.tree.folder("home/Library/Caches/com.maker.app");
        machine.tree.file("home/Library/Preferences/com.maker.app.plist");
        machine.tree.file("home/Library/LaunchAgents/com.maker.app.plist");
        QCOMPARE(machine.found(),
            (QStringList{ u"home/Library/LaunchAgents/com.maker.app.plist | Opens at login"_s,
                u"home/Library/Preferences/com.maker.app.plist | Preferences"_s }));
    }

    void theLargestComesFirstAndWhatNeedsAnAdministratorCountsNowhere()
    {
        const Machine machine;
        machine.tree.file("home/Library/Caches/com.maker.app/x", 10);
        machine.tree.file("home/Library/WebKit/com.maker.app/x", 30);
        machine.tree.file("Library/Application Support/Maker App/x", 20);
        const auto plan = machine.plan();
        QCOMPARE(plan.leftovers.size(), size_t(3));
        QCOMPARE(plan.leftovers.at(0).bytes, qint64(30));
        QVERIFY(plan.leftovers.at(1).needsAdministrator);
        QCOMPARE(plan.leftoverBytes(), qint64(40));
        QCOMPARE(plan.totalBytes(), qint64(1040));
    }

    void guardsAreAskedByTheProcessesOwnHome()
    {
        Machine machine;
        machine.tree.file("home/Library/Caches/com.maker.app/x", 10);
        machine.tree.file("Library/LaunchDaemons/com.maker.app.plist", 10);
        auto services = machine.services();
        HostGuards guards;
        guards.guards.push_back({ .names = [](const GuardedPath &path) -> std::optional<std::string> {
                                     return path.rest ? std::optional(std::string()) : std::nullopt;
                                 },
            .sentence = u"It stays."_s });
        services.guards = &guards;
        const auto found = [&](const std::string &processHome) {
            services.processHome = processHome;
            return Uninstaller::plan(services,
                { .app = app,
                    .measure = machine.measure(),
                    .home = machine.home(),
                    .library = machine.path("Library") })
                .leftovers.size();
        };
        QCOMPARE(found(machine.path("elsewhere")), size_t(2));
        // Below that home everything is refused; what needs an administrator is shown nevertheless.
        QCOMPARE(found(machine.tree.path()), size_t(1));
    }

    void keysThatAreNoNamesFormNoPaths_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("identifier");
        QTest::newRow("no name") << u""_s << u"com.maker.none"_s;
        QTest::newRow("the folder itself") << u"."_s << u"."_s;
        QTest::newRow("the folder above") << u".."_s << u".."_s;
        QTest::newRow("a path") << u"../../Documents"_s << u"a/../../../Documents"_s;
        QTest::newRow("a zero byte") << u"a\0b"_s << u"a\0b"_s;
    }
    void keysThatAreNoNamesFormNoPaths()
    {
        QFETCH(QString, name);
        QFETCH(QString, identifier);
        const Machine machine;
        machine.tree.file("home/Library/Caches/one/x", 10);
        machine.tree.file("home/Library/LaunchAgents/one.plist", 10);
        machine.tree.file("home/Library/Group Containers/one..", 10);
        machine.tree.file("home/Documents/x", 10);
        auto odd = app;
        odd.name = name;
        odd.bundleID = identifier;
        QCOMPARE(machine.found(odd), QStringList());
    }
};

QUILLBROOK_SUITE(TestUninstallPlan, QCoreApplication)
#include "tst_UninstallPlan.moc"
