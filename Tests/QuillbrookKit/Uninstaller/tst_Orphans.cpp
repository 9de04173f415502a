// What is left of applications that nobody has any more, and what only seems so.

#include "Support/BundleTree.h"
#include "Support/Suite.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 day = 86'400;
constexpr qint64 large = 1'048'577;

struct Machine : BundleTree
{
    void add(const std::string &name, qint64 bytes = large, qint64 age = 181 * day) const
    {
        tree.file("home/Library/" + name + "/x", bytes);
        BundleTree::age("home/Library/" + name, age);
    }
    [[nodiscard]] std::vector<Orphan> orphans(const std::vector<AppBundle> &installed = {}) const
    {
        return Uninstaller::orphans(
            services(), { .installed = installed, .measure = measure(), .staleDays = 180, .home = home() });
    }
};

} // namespace

class TestOrphans : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesDecideWhoseItIs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isOrphan");
        QTest::newRow("of a maker") << u"com.maker.tool"_s << true;
        QTest::newRow("in odd letters") << u"Some.Odd.Name"_s << true;
        QTest::newRow("one word") << u"Google"_s << false;
        QTest::newRow("two pieces") << u"com.maker"_s << false;
        QTest::newRow("two pieces and dots") << u"com..maker."_s << false;
        QTest::newRow("hidden") << u".com.maker.tool"_s << false;
        QTest::newRow("the system's") << u"com.apple.TextEdit"_s << false;
        QTest::newRow("a group of the system's") << u"group.com.apple.notes"_s << false;
        QTest::newRow("a known owner") << u"com.docker.docker"_s << false;
        QTest::newRow("only like a known owner") << u"com.dockerhub.tool"_s << true;
        QTest::newRow("begins without a dot") << u"org.pythonista.app"_s << false;
        QTest::newRow("in other letter case") << u"Com.Docker.Docker"_s << true;
        QTest::newRow("installed") << u"com.here.app"_s << false;
        QTest::newRow("a helper of what is installed") << u"com.here.app.helper"_s << false;
        QTest::newRow("begins like what is installed") << u"com.here.appdata"_s << false;
    }
    void namesDecideWhoseItIs()
    {
        QFETCH(QString, name);
        const Machine machine;
        machine.add("Application Support/" + name.toStdString());
        const auto found = machine.orphans({ { .bundleID = u"com.here.app"_s }, { .name = u"Nameless"_s } });
        QTEST(!found.empty(), "isOrphan");
        QCOMPARE(machine.measured.size(), found.size());
    }

    void ownersThatAreNoApplicationsKeepTheirs_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto *start : { "com.apple.", "group.com.apple.", "com.docker.", "com.vmware.",
                 "org.python", "org.mozilla.crashreporter", "com.google.keystone", "com.microsoft.autoupdate",
                 "com.adobe.acc", "com.adobe.ccx", "Homebrew", "homebrew", "node", "npm", "pip", "JetBrains",
                 "com.jetbrains.toolbox", "CrashReporter", "Knowledge", "Mobile Documents" })
            QTest::newRow(start) << QString::fromLatin1(start) + u"x.y.z"_s;
    }
    void ownersThatAreNoApplicationsKeepTheirs()
    {
        QFETCH(QString, name);
        const Machine machine;
        machine.add("Caches/" + name.toStdString());
        machine.add("Caches/x" + name.toStdString());
        const auto found = machine.orphans();
        QCOMPARE(found.size(), size_t(1));
        QCOMPARE(found.at(0).bundleID, u'x' + name);
    }

    void ageAndSizeDecideWhetherItIsShown_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<qint64>("age");
        QTest::addColumn<bool>("isOrphan");
        QTest::newRow("old and large") << large << 180 * day + 1 << true;
        QTest::newRow("exactly at the cutoff") << large << 180 * day << false;
        QTest::newRow("newer") << large << day << false;
        QTest::newRow("exactly as large as is passed over") << large - 1 << 181 * day << false;
    }
    void ageAndSizeDecideWhetherItIsShown()
    {
        QFETCH(qint64, bytes);
        QFETCH(qint64, age);
        const Machine machine;
        machine.add("Caches/com.maker.tool", bytes, age);
        QTEST(!machine.orphans().empty(), "isOrphan");
    }

    void sixPlacesAreSearchedAndTheLargestComesFirst()
    {
        const Machine machine;
        machine.add("Application Support/com.maker.a", large);
        machine.add("Containers/com.maker.a", large);
        machine.add("Caches/com.maker.b", large + 5);
        machine.add("Saved Application State/com.maker.tool.savedState");
        machine.add("Saved Application State/com.maker.plain");
        machine.add("HTTPStorages/com.maker.c");
        machine.add("WebKit/com.maker.d");
        machine.add("Logs/com.maker.e");
        const auto found = machine.orphans();
        QStringList told;
        for (const auto &orphan : found)
            told.append(orphan.bundleID + u'|' + rawValue(orphan.kind));
        QCOMPARE(told.size(), 7);
        QCOMPARE(told.mid(0, 3),
            (QStringList{
                u"com.maker.b|Cache"_s, u"com.maker.a|Application support"_s, u"com.maker.a|Container"_s }));
        QVERIFY(told.contains(u"com.maker.tool|Saved windows"_s));
        QVERIFY(told.contains(u"com.maker.plain|Saved windows"_s));
        for (const auto &orphan : found)
            if (orphan.bundleID == u"com.maker.tool"_s)
                QCOMPARE(orphan.path,
                    machine.path("home/Library/Saved Application State/com.maker.tool.savedState"));
        QCOMPARE(found.at(0).lastModified, std::optional(machine.clock.moment.addSecs(-181 * day)));
    }

    void whatIsGuardedOrCantBeReadIsPassedOver()
    {
        const Machine machine;
        machine.add("Containers/com.maker.tool.photoslibrary");
        machine.tree.link("home/Library/Caches/com.maker.gone", "nowhere");
        QVERIFY(machine.orphans().empty());
    }

    void theNameIsGuessedByTheLastPiece_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("guess");
        QTest::newRow("words") << u"com.maker.my-cool-tool"_s << u"My Cool Tool"_s;
        QTest::newRow("two words") << u"com.maker.my-app"_s << u"My App"_s;
        QTest::newRow("capitals") << u"com.maker.myTOOL"_s << u"Mytool"_s;
        QTest::newRow("dots at the end") << u"com.maker.tool.."_s << u"Tool"_s;
        QTest::newRow("nothing but dots") << u"..."_s << u"..."_s;
    }
    void theNameIsGuessedByTheLastPiece()
    {
        QFETCH(QString, identifier);
        QTEST((Orphan{ .bundleID = identifier }.guessedApp()), "guess");
    }
};

QUILLBROOK_SUITE(TestOrphans, QCoreApplication)
#include "tst_Orphans.moc"
