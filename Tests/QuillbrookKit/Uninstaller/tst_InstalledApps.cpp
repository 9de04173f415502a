// Which bundles are applications, and what each says of itself.

#include "Support/BundleTree.h"
#include "Support/Suite.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto id = [](const QByteArray &value) { return BundleTree::text("CFBundleIdentifier", value); };

struct Machine : BundleTree
{
    [[nodiscard]] std::vector<AppBundle> apps() const
    {
        return Uninstaller::installedApps(services(),
            { path("Applications"), path("Applications/Utilities"), path("System/Applications"),
                path("home/Applications") },
            measure());
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList names;
        for (const auto &app : apps())
            names.append(app.name);
        return names;
    }
};

} // namespace

class TestInstalledApps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreTheOnesTold()
    {
        QCOMPARE(Uninstaller::appFolders("/home/ann"),
            (std::vector<std::string>{ "/Applications", "/Applications/Utilities", "/System/Applications",
                "/System/Applications/Utilities", "/home/ann/Applications" }));
    }

    void bundleTellsOfItself_data()
    {
        QTest::addColumn<QByteArray>("dictionary");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isSystem");
        const auto text = &BundleTree::text;
        const auto shortVersion = text("CFBundleShortVersionString", "4.2.1");
        const auto longVersion = text("CFBundleVersion", "421");
        QTest::newRow("everything") << id("com.maker.foo") + text("CFBundleName", "Foo") + shortVersion
                + longVersion << u"Foo"_s
                                    << u"com.maker.foo"_s << u"4.2.1"_s << false;
        QTest::newRow("nothing") << QByteArray() << u"Foo Bar"_s << QString() << QString() << false;
        QTest::newRow("an empty name stays")
            << text("CFBundleName", "") << u""_s << QString() << QString() << false;
        QTest::newRow("only the longer version")
            << longVersion << u"Foo Bar"_s << QString() << u"421"_s << false;
        QTest::newRow("values of another kind")
            << QByteArray("<key>CFBundleIdentifier</key><integer>1</integer><key>CFBundleName</key><true/>"
                          "<key>CFBundleShortVersionString</key><real>1.5</real>")
                + longVersion
            << u"Foo Bar"_s << QString() << u"421"_s << false;
        QTest::newRow("the system's by identifier")
            << id("com.apple.Foo") << u"Foo Bar"_s << u"com.apple.Foo"_s << QString() << true;
        QTest::newRow("not the system's")
            << id("com.applepie.Foo") << u"Foo Bar"_s << u"com.applepie.Foo"_s << QString() << false;
    }
    void bundleTellsOfItself()
    {
        QFETCH(QByteArray, dictionary);
        QFETCH(QString, version);
        const Machine machine;
        machine.bundle("Applications/Foo Bar.app", dictionary, 5000);
        machine.age("Applications/Foo Bar.app", 1000);
        const auto path = machine.path("Applications/Foo Bar.app");
        const auto app = Uninstaller::readBundle(machine.services(), path, machine.measure());
        QVERIFY(app);
        QCOMPARE(app->path, path);
        QTEST(app->name, "name");
        QTEST(app->bundleID, "identifier");
        QCOMPARE(app->version, version.isEmpty() ? std::nullopt : std::optional(version));
        QTEST(app->isSystem, "isSystem");
        QVERIFY(!app->fromAppStore);
        QCOMPARE(app->lastOpened, std::optional(machine.clock.moment.addSecs(-1000)));
        QVERIFY(app->bytes > 5000);
        QCOMPARE(machine.measured, std::vector<std::string>{ path });
    }

    void theSystemsFolderMakesAnApplicationTheSystems()
    {
        const Machine machine;
        machine.bundle("Foo.app", id("com.maker.foo"));
        struct Elsewhere final : FileReading
        {
            const Machine &machine;
            explicit Elsewhere(const Machine &of)
                : machine(of)
            {
            }
            [[nodiscard]] std::optional<QByteArray> contents(
                const std::string &path, qsizetype limit) const override
            {
                return machine.reading.contents(machine.path(path.substr(path.rfind("/Foo.app") + 1)), limit);
            }
        };
        const Elsewhere reading(machine);
        auto services = machine.services();
        const UninstallerServices moved{ .reading = reading,
            .files = services.files,
            .runningApps = services.runningApps,
            .clock = services.clock };
        const auto isSystem = [&](const std::string &folder) {
            return Uninstaller::readBundle(moved, folder + "/Foo.app", machine.measure())->isSystem;
        };
        QVERIFY(isSystem("/System/Applications"));
        QVERIFY(!isSystem("/Systems"));
    }

    void aReceiptMeansTheStore()
    {
        const Machine machine;
        machine.bundle("Applications/Foo.app", id("com.maker.foo"));
        machine.tree.file("Applications/Foo.app/Contents/_MASReceipt/receipt");
        QVERIFY(machine.apps().at(0).fromAppStore);
    }

    void whatIsNoBundleIsNotListed_data()
    {
        QTest::addColumn<QByteArray>("list");
        using namespace PropertyListBytes;
        QTest::newRow("nothing there") << QByteArray();
        QTest::newRow("a list at the top") << xml("<array><string>a</string></array>");
        QTest::newRow("not a property list") << QByteArray("#!/bin/sh\n");
        QTest::newRow("cut off") << xml("<dict><key>CFBundleName</key><string>Foo").chopped(12);
        QTest::newRow("a binary list that names itself") << binary({ array({ 0 }) });
        QTest::newRow("binary and cut off")
            << binary({ dictionary({ 1 }, { 1 }), PropertyListBytes::text("x") }).chopped(9);
    }
    void whatIsNoBundleIsNotListed()
    {
        QFETCH(QByteArray, list);
        const Machine machine;
        machine.tree.folder("Applications/Foo.app/Contents");
        if (!list.isEmpty())
            machine.tree.fileWith("Applications/Foo.app/Contents/Info.plist", list.toStdString());
        QVERIFY(machine.apps().empty());
        QVERIFY(machine.measured.empty());
    }

    void aBinaryListIsRead()
    {
        using namespace PropertyListBytes;
        const Machine machine;
        machine.tree.fileWith("Applications/Foo.app/Contents/Info.plist",
            binary({ dictionary({ 1 }, { 2 }), PropertyListBytes::text("CFBundleIdentifier"),
                       PropertyListBytes::text("com.maker.foo") })
                .toStdString());
        QCOMPARE(machine.apps().at(0).bundleID, u"com.maker.foo"_s);
    }

    void foldersOfMakersAreSearchedOneLevelDeep()
    {
        const Machine machine;
        machine.bundle("Applications/Vendor/Tool.app", id("com.maker.tool"), 3000);
        machine.bundle("Applications/Vendor/.Hidden.app", id("com.maker.hidden"), 2000);
        machine.bundle("Applications/Vendor/Sub/Deep.app", id("com.maker.deep"));
        machine.bundle("Applications/.vendor/Secret.app", id("com.maker.secret"));
        machine.tree.file("Applications/notes.txt");
        QCOMPARE(machine.names(), (QStringList{ u"Tool"_s, u".Hidden"_s }));
    }

    void theFirstOfAnIdentifierCounts()
    {
        const Machine machine;
        machine.bundle("Applications/Foo.app", id("com.maker.foo"), 1000);
        machine.bundle("home/Applications/Foo Copy.app", id("com.maker.foo"), 9000);
        machine.bundle("Applications/Utilities/Tool.app", id("com.maker.tool"), 500);
        machine.bundle("Applications/Nameless.app", {}, 400);
        machine.bundle("home/Applications/Nameless.app", {}, 300);
        QCOMPARE(machine.names(), (QStringList{ u"Foo"_s, u"Tool"_s, u"Nameless"_s, u"Nameless"_s }));
    }

    void applicationsOfOneSizeStayInTheOrderTheyWereFound()
    {
        const Machine machine;
        machine.bundle("Applications/A.app", id("com.maker.a"));
        machine.bundle("home/Applications/B.app", id("com.maker.b"));
        QCOMPARE(machine.names(), (QStringList{ u"A"_s, u"B"_s }));
    }

    void recordsAreHashedByAllTheyHold()
    {
        const AppBundle app{ .path = "/a", .name = u"A"_s, .bytes = 1 };
        auto other = app;
        QCOMPARE(qHash(app), qHash(other));
        other.lastOpened = QDateTime::fromSecsSinceEpoch(5, Qt::UTC);
        QVERIFY(app != other && qHash(app) != qHash(other));
    }
};

QUILLBROOK_SUITE(TestInstalledApps, QCoreApplication)
#include "tst_InstalledApps.moc"
