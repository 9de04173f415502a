#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/StorageCatalogue.h"
#include "Platform/Linux/Processes/LinuxProcessRunner.h"
#include "Support/MadeUpHome.h"
#include "Support/PropertyListBytes.h"
#include "Support/Suite.h"

#include <QFile>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1'048'576;

// A tree made by hand, so that members have exactly the size that a case wants.
class SampleTree
{
public:
    explicit SampleTree(const QString &folder)
        : m_tree(128)
        , m_root(m_tree.addNode(FileTree::noNode, folder.toStdString(), 0, FileTree::Flags::directory))
    {
    }
    void add(const std::string &name, qint64 bytes)
    {
        const auto folder = m_tree.addNode(m_root, name, 0, FileTree::Flags::directory);
        m_tree.addNode(folder, "content", bytes, FileTree::Flags::none);
    }
    /// With the children in the order of a tree that nobody sorted.
    [[nodiscard]] const FileTree &finish()
    {
        m_tree.rollUp();
        return m_tree;
    }

private:
    FileTree m_tree;
    qint32 m_root;
};

Finding findingOf(const QString &ruleId, const QString &path)
{
    return { .rule = { .id = ruleId }, .path = path };
}

// Starts a script of the test's own in the place of the simulator tool, by the real runner.
auto runInstead(const QString &script)
{
    return [=](ProcessRunner::Command command) {
        command.program = script;
        return LinuxProcessRunner().run(command);
    };
}

void write(const MadeUpHome &home, const std::string &name, const QByteArray &content)
{
    home.tree.folder(name.substr(0, name.find_last_of('/')));
    QFile file(home.path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("the file can't be written");
}

QString script(const MadeUpHome &home, const QByteArray &body)
{
    write(home, "bin/tool", "#!/bin/sh\n" + body);
    auto path = home.path("bin/tool");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace

class TestStorageCatalogueItems : public QObject
{
    Q_OBJECT

private:
    static QList<StorageItem> items(MadeUpHome &home, const QString &ruleId, const FileTree &tree)
    {
        return StorageCatalogue::items(home.services(), findingOf(ruleId, tree.path(0)), tree, 0);
    }
    static StorageItem only(MadeUpHome &home, const QString &ruleId, const std::string &name)
    {
        SampleTree tree(home.path("folder"));
        tree.add(name, 2 * mebibyte);
        const auto list = items(home, ruleId, tree.finish());
        return list.size() == 1 ? list.first() : StorageItem{ .name = u"not one item"_s };
    }

    // Of a place told as "rule:path", by the tables of Linux.
    static QList<StorageItem> hostsItems(MadeUpHome &home, const QString &place, const std::string &child)
    {
        static const auto host = LinuxCatalogue::catalogue({}, u"/home"_s);
        const auto path = home.path(place.section(u':', 1).toStdString());
        SampleTree tree(path);
        tree.add(child, 2 * mebibyte);
        return StorageCatalogue::items(home.services(), findingOf(place.section(u':', 0, 0), path),
            tree.finish(), 0, { .homeDirectory = home.path(), .host = &host });
    }

private Q_SLOTS:
    void fourRulesOpenIntoItems()
    {
        QCOMPARE(StorageCatalogue::itemisedRules(),
            QSet<QString>(
                { u"android.avd"_s, u"xcode.deriveddata"_s, u"simulator.devices"_s, u"xcode.archives"_s }));
        QVERIFY(StorageCatalogue::supportsItems(u"android.avd"_s));
        QVERIFY(!StorageCatalogue::supportsItems(u"trash"_s));
        QVERIFY(!StorageCatalogue::supportsItems(u"Android.avd"_s));
    }

    void otherRuleHasNoItemsAndStartsNoProcess()
    {
        MadeUpHome home;
        SampleTree tree(home.path("folder"));
        tree.add("one", 5 * mebibyte);
        QVERIFY(items(home, u"trash"_s, tree.finish()).isEmpty());
        QVERIFY(home.processes.commands.isEmpty());
    }

    void onlySimulatorsStartAProcess()
    {
        MadeUpHome home;
        for (const auto *rule : { "android.avd", "xcode.deriveddata", "xcode.archives" })
            QVERIFY(!only(home, QString::fromLatin1(rule), "x").name.isEmpty());
        QVERIFY(home.processes.commands.isEmpty());
        QVERIFY(!only(home, u"simulator.devices"_s, "x").name.isEmpty());
        QCOMPARE(home.processes.commands.size(), 1);
    }

    void findingThatTheTreeDoesNotHoldHasNoItems()
    {
        MadeUpHome home;
        SampleTree tree(home.path("folder"));
        tree.add("Pixel.avd", 5 * mebibyte);
        const auto &finished = tree.finish();
        QVERIFY(StorageCatalogue::items(
            home.services(), findingOf(u"android.avd"_s, home.path("other")), finished, 0)
                    .isEmpty());
        QVERIFY(StorageCatalogue::items(
            home.services(), findingOf(u"simulator.devices"_s, home.path("other")), finished, 0)
                    .isEmpty());
        QVERIFY(StorageCatalogue::items(
            home.services(), findingOf(u"android.avd"_s, home.path("folder")), finished, -1)
                    .isEmpty());
        QVERIFY(home.processes.commands.isEmpty());
    }

    void memberOfAMebibyteIsLeftOutAndOneByteMoreIsListed()
    {
        MadeUpHome home;
        SampleTree tree(home.path("folder"));
        tree.add("exactly.avd", mebibyte);
        tree.add("more.avd", mebibyte + 1);
        tree.add("Pixel.ini", 200);
        const auto &finished = tree.finish();
        const auto list = items(home, u"android.avd"_s, finished);
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.first().name, u"more"_s);
        QCOMPARE(list.first().bytes, mebibyte + 1);
        const auto count = [&](const QString &id) {
            return StorageCatalogue::itemCount(findingOf(id, home.path("folder")), finished, 0);
        };
        QCOMPARE(count(u"android.avd"_s), 1);
        QCOMPARE(count(u"npm.cacache"_s), 0);
    }

    void itemTellsItsPlace()
    {
        MadeUpHome home;
        home.tree.folder("avd/Pixel_7.avd");
        home.touch("avd/Pixel_7.avd", QDateTime(QDate(2024, 6, 1), QTime(8, 30, 15, 900), Qt::UTC));
        SampleTree tree(home.path("avd"));
        tree.add("Pixel_7.avd", 3 * mebibyte);
        tree.add("gone.avd", 2 * mebibyte);
        const auto list = items(home, u"android.avd"_s, tree.finish());
        QCOMPARE(list.size(), 2);
        QCOMPARE(list[0].id, u"android.avd/Pixel_7.avd"_s);
        QCOMPARE(list[0].path, home.path("avd/Pixel_7.avd"));
        QCOMPARE(list[0].rawPath, home.tree.path("avd/Pixel_7.avd"));
        QCOMPARE(list[0].bytes, 3 * mebibyte);
        QCOMPARE(list[0].lastModified, QDateTime(QDate(2024, 6, 1), QTime(8, 30, 15), Qt::UTC));
        QCOMPARE(list[0].created, LinuxFileFacts().dates(home.tree.path("avd/Pixel_7.avd"))->created);
        QVERIFY(list[0].removable && !list[0].blockedReason);
        QVERIFY(!list[1].lastModified && !list[1].created);
    }

    // More of them than a sort takes as a small list, which stays in order whatever the sort.
    void largestComesFirstAndEqualSizesKeepTheTreesOrder()
    {
        MadeUpHome home;
        SampleTree tree(home.path("folder"));
        for (int i = 0; i < 40; ++i)
            tree.add(std::to_string(i), (i % 3 == 0 ? 5 : 2) * mebibyte);
        const auto &finished = tree.finish();
        QStringList large;
        QStringList small;
        for (const auto child : finished.children(0))
            (finished.size(child) > 3 * mebibyte ? large : small).append(finished.name(child));
        QStringList names;
        for (const auto &item : items(home, u"xcode.archives"_s, finished))
            names.append(item.name);
        QCOMPARE(names, large + small);
    }

    void naming_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QByteArray>("child");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("detail");
        const auto avd = u"android.avd"_s;
        const auto device = u"Android virtual device"_s;
        QTest::newRow("device") << avd << QByteArray("Pixel_7.avd") << u"Pixel_7"_s << device;
        QTest::newRow("device without the ending") << avd << QByteArray("Pixel_7") << u"Pixel_7"_s << device;
        QTest::newRow("device, another letter case")
            << avd << QByteArray("Pixel.AVD") << u"Pixel.AVD"_s << device;
        QTest::newRow("device named by the ending alone") << avd << QByteArray(".avd") << u""_s << device;
        QTest::newRow("device with the ending twice")
            << avd << QByteArray("a.avd.avd") << u"a.avd"_s << device;
        QTest::newRow("device, not UTF-8") << avd << QByteArray("a\xff.avd") << u"a\uFFFD"_s << device;
        const auto derived = u"xcode.deriveddata"_s;
        const auto build = u"Build intermediates"_s;
        QTest::newRow("project") << derived << QByteArray("App-abcdef") << u"App"_s << build;
        QTest::newRow("project with a hyphen")
            << derived << QByteArray("App-Two-abcdef") << u"App"_s << build;
        QTest::newRow("project without a hyphen") << derived << QByteArray("App") << u"App"_s << build;
        QTest::newRow("project that begins with hyphens")
            << derived << QByteArray("--App-x") << u"App"_s << build;
        QTest::newRow("project of hyphens") << derived << QByteArray("--") << u"--"_s << build;
        QTest::newRow("module cache")
            << derived << QByteArray("ModuleCache.noindex") << u"Shared module cache"_s
            << u"Shared module cache for every project"_s;
        QTest::newRow("nearly the module cache")
            << derived << QByteArray("ModuleCache.noindex2") << u"ModuleCache.noindex2"_s << build;
        QTest::newRow("archives") << u"xcode.archives"_s << QByteArray("2024-06-01") << u"2024-06-01"_s
                                  << u"Shipped build archive"_s;
        QTest::newRow("simulator without a property list")
            << u"simulator.devices"_s << QByteArray("4B8F-1") << u"4B8F-1"_s << u"iOS simulator"_s;
    }
    void naming()
    {
        QFETCH(QString, rule);
        QFETCH(QByteArray, child);
        MadeUpHome home;
        const auto item = only(home, rule, child.toStdString());
        QTEST(item.name, "name");
        QTEST(item.detail, "detail");
        QCOMPARE(item.id, rule + u'/' + QString::fromUtf8(child));
        QVERIFY(item.removable && !item.blockedReason);
    }

    void hostsNaming_data()
    {
        QTest::addColumn<QString>("place");
        QTest::addColumn<QByteArray>("child");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("detail");
        const auto row = [](const char *place, const char *child, const QString &name,
                             const QString &detail) {
            QTest::addRow("%s", child) << QString::fromUtf8(place) << QByteArray(child) << name << detail;
        };
        const auto environment = u"Python environment"_s;
        row("python.envs:.local/share/virtualenvs", "site-Ab3dEf_9", u"site"_s, environment);
        row("python.envs:.local/share/virtualenvs", "site-Ab3-Ef_9", u"site"_s, environment);
        row("python.envs:.local/share/virtualenvs", "site", u"site"_s, environment);
        row("python.envs:.local/share/virtualenvs", "my-project", u"my-project"_s, environment);
        row("python.envs:.cache/pypoetry/virtualenvs", "my-site-Ab3dEf_9-py3.12", u"my-site"_s, environment);
        row("python.envs:miniconda3/envs", "tools-Ab3dEf_9", u"tools-Ab3dEf_9"_s, environment);
        const auto index = u"Code editor index"_s;
        row("editor.indexes:.cache/JetBrains", "IntelliJIdea2024.1", u"IntelliJIdea 2024.1"_s, index);
        row("editor.indexes:.cache/JetBrains", "RemoteDev", u"RemoteDev"_s, index);
        row("ai.huggingface:.cache/huggingface/hub", "models--org--na--me", u"org/na/me"_s, u"AI model"_s);
        row("ai.huggingface:.cache/huggingface/hub", "datasets--set", u"set"_s, u"Data set"_s);
        row("ai.huggingface:.cache/huggingface/hub", "spaces--org--app", u"org/app"_s, u"AI app"_s);
        row("ai.huggingface:.cache/huggingface/hub", "tmp", u"tmp"_s, u"AI model"_s);
        row("ai.huggingface:.cache/huggingface/datasets", "org___set", u"org/set"_s, u"Data set"_s);
        row("steam.extras:.local/share/Steam/steamapps/shadercache", "570", u"Dota \"2\""_s,
            u"Graphics files"_s);
        row("steam.extras:.local/share/Steam/steamapps/downloading", "730", u"Steam game 730"_s,
            u"Unfinished download"_s);
        row("images.downloads:.vagrant.d/boxes", "debian-VAGRANTSLASH-12", u"debian/12"_s,
            u"Machine image"_s);
        row("android.sdk:Android/Sdk/system-images", "android-34", u"android-34"_s,
            u"Android system image"_s);
        row("images.downloads:.cache/gnome-boxes", "debian-12.iso", u"debian-12.iso"_s, u"Machine image"_s);
        row("android.sdk:Android/Sdk/ndk", "26.1", u"26.1"_s, u"Android building block"_s);
        row("ai.models:.cache/llama.cpp", "ggml-7b.gguf", u"ggml-7b.gguf"_s, u"AI model"_s);
        row("board.tools:.platformio/packages", "toolchain-xtensa", u"toolchain-xtensa"_s,
            u"Tool for programming boards"_s);
        row("games.runners:.local/share/lutris/runners", "wine-8-26", u"wine-8-26"_s,
            u"Helper for Windows games"_s);
        row("aur.builds:.cache/yay", "paru-bin", u"paru-bin"_s, u"Package build"_s);
    }
    void hostsNaming()
    {
        QFETCH(QString, place);
        QFETCH(QByteArray, child);
        MadeUpHome home;
        write(home, ".local/share/Steam/steamapps/appmanifest_570.acf",
            "\"AppState\"\n{\n\t\"appid\"\t\t\"570\"\n\t\"name\"\t\t\"Dota \\\"2\\\"\"\n}\n");
        const auto list = hostsItems(home, place, child.toStdString());
        QCOMPARE(list.size(), 1);
        QTEST(list.first().name, "name");
        QTEST(list.first().detail, "detail");
        QVERIFY(list.first().removable && !list.first().blockedReason);
    }

    void membersOfWhatIsOnlyShownMustStay_data()
    {
        QTest::addColumn<QString>("place");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("detail");
        const auto row
            = [](const char *place, const QString &detail, const QString &name = u"org.gimp.GIMP"_s) {
                  QTest::addRow("%s", place) << QString::fromUtf8(place) << name << detail;
              };
        row("sandbox.data:.var/app", u"Flatpak app data"_s, u"GIMP"_s);
        row("sandbox.data:snap", u"Snap app data"_s);
        row("vm.images:VirtualBox VMs", u"Virtual machine"_s);
        row("wine.prefixes:.local/share/wineprefixes", u"Windows environment"_s);
        row("games.installed:Games", u"Game"_s);
        row("dev.toolchains:.rustup/toolchains", u"Installed version"_s);
        row("editor.extensions:.vscode/extensions", u"Code editor add-on"_s);
    }

    void membersOfWhatIsOnlyShownMustStay()
    {
        QFETCH(QString, place);
        MadeUpHome home;
        write(home, ".local/share/flatpak/exports/share/applications/org.gimp.GIMP.desktop",
            "[Desktop Entry]\nName=GIMP\n");
        const auto item = hostsItems(home, place, "org.gimp.GIMP").value(0);
        QTEST(item.name, "name");
        QTEST(item.detail, "detail");
        QCOMPARE(item.blockedReason, u"Quillbrook only shows this one."_s);
        QVERIFY(!item.removable);
    }

    void placeThatTheHostDoesNotOpenHasNoItems()
    {
        MadeUpHome home;
        for (const auto &place : { u"ai.huggingface:.cache/huggingface/xet"_s,
                 u"editor.indexes:.cache/vscode-cpptools"_s, u"containers.storage:.local/share/docker"_s,
                 u"ai.models:.cache/modelscope/hub"_s, u"vm.images:.crc"_s })
            QVERIFY2(hostsItems(home, place, "child").isEmpty(), qPrintable(place));
    }

    void simulatorIsNamedByItsPropertyList()
    {
        MadeUpHome home;
        write(home, "folder/4B8F-1/device.plist",
            PropertyListBytes::xml("<dict><key>name</key><string>iPhone "
                                   "15</string><key>runtime</key><string>x.iOS-17-2</string></dict>"));
        QCOMPARE(only(home, u"simulator.devices"_s, "4B8F-1").name, u"iPhone 15 \u00B7 iOS.17.2"_s);
    }

    void runningSimulatorIsListedAndNotRemovable()
    {
        MadeUpHome home;
        home.processes.answer = runInstead(script(home,
            "echo \"$1 $2 $3\" > \"$(dirname \"$0\")/asked\"\n"
            "echo '    iPhone 15 (4B8F-1) (Booted) '\n"
            "echo '    iPhone 14 (4B8F-2) (Shutdown) '\n"));
        SampleTree tree(home.path("folder"));
        tree.add("4B8F-1", 3 * mebibyte);
        tree.add("4B8F-2", 2 * mebibyte);
        const auto list = items(home, u"simulator.devices"_s, tree.finish());
        QCOMPARE(list.size(), 2);
        QVERIFY(!list[0].removable);
        QCOMPARE(list[0].blockedReason, u"Running right now — shut it down first."_s);
        QCOMPARE(list[0].bytes, 3 * mebibyte);
        QVERIFY(list[1].removable && !list[1].blockedReason);
        QFile asked(home.path("bin/asked"));
        QVERIFY(asked.open(QIODevice::ReadOnly));
        QCOMPARE(asked.readAll(), QByteArray("simctl list devices\n"));
    }

    void withoutTheToolEverySimulatorIsRemovable()
    {
        MadeUpHome home;
        home.processes.answer = runInstead(home.path("no such tool"));
        QVERIFY(only(home, u"simulator.devices"_s, "4B8F-1").removable);
    }

    void toolIsReadToItsEnd()
    {
        MadeUpHome home;
        home.processes.answer = runInstead(script(home,
            "yes '    iPhone 14 (4B8F-2) (Shutdown)' | head -n 200000\necho 'iPhone 15 (4B8F-1) "
            "(Booted)'\n"));
        QVERIFY(!only(home, u"simulator.devices"_s, "4B8F-1").removable);
        QCOMPARE(home.processes.commands.first().timeLimit, std::chrono::milliseconds::max());
    }
};

QUILLBROOK_SUITE(TestStorageCatalogueItems, QCoreApplication)
#include "tst_StorageCatalogueItems.moc"
