#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "RawText.h"
#include "Support/FakeFileReading.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QProcessEnvironment>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto home = u"/home/someone"_s;

using Variables = QList<std::pair<QString, QString>>;

HostFacts factsWith(const Variables &variables, const FileReading &reading = FakeFileReading())
{
    QProcessEnvironment environment;
    for (const auto &[name, value] : variables)
        environment.insert(name, value);
    return LinuxHostKnowledge(reading, environment).about(home.toStdString());
}

// Where a rule's place of that name lies; empty where the rule has none.
QString placeOf(const HostCatalogue &catalogue, const QString &ruleId, const QString &label)
{
    for (const auto &row : catalogue.locations)
        for (const auto &location : row.locations)
            if (row.ruleId == ruleId && location.label == label)
                return location.path;
    for (const auto &row : catalogue.rules)
        for (const auto &location : row.locations)
            if (row.rule.id == ruleId && location.label == label)
                return location.path;
    return {};
}

QStringList described(const HostCatalogue &catalogue, const QString &ruleId)
{
    QStringList lines;
    for (const auto &row : catalogue.locations)
        for (const auto &[path, label, application] : row.locations)
            if (row.ruleId == ruleId)
                lines.append(QStringList{ path, label, application }.join(u" = "_s));
    return lines;
}

} // namespace

class TestLinuxHostKnowledge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheTablesOfLinux()
    {
        const auto facts = factsWith({});
        QVERIFY(facts.catalogue == LinuxCatalogue::catalogue({}, home));
        QVERIFY(facts.catalogue.rules.size() >= LinuxCatalogue::safeRules().size());
        QCOMPARE(facts.quietAllowlist, LinuxQuietScope::allowlist(home));
        QCOMPARE(facts.protectedPaths, LinuxQuietScope::protectedPaths(home, {}));
    }

    void protectsFoldersUnderTheNamesTheDesktopGivesThem()
    {
        FakeFileReading reading;
        reading.files["/home/someone/.config/user-dirs.dirs"] = "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n";
        QVERIFY(factsWith({}, reading).protectedPaths.contains(home + u"/Bilder"_s));
        QVERIFY(!factsWith({}).protectedPaths.contains(home + u"/Bilder"_s));
        reading.files["/etc/someone/user-dirs.dirs"] = "XDG_PICTURES_DIR=\"$HOME/Fotos\"\n";
        const auto moved = factsWith({ { u"XDG_CONFIG_HOME"_s, u"/etc/someone"_s } }, reading).protectedPaths;
        QVERIFY(moved.contains(home + u"/Fotos"_s) && !moved.contains(home + u"/Bilder"_s));
    }

    void readsNothingButTheDesktopsFolderNames()
    {
        class Noting final : public FileReading
        {
        public:
            std::optional<QByteArray> contents(const std::string &path, qsizetype) const override
            {
                asked.push_back(path);
                return std::nullopt;
            }
            mutable std::vector<std::string> asked;
        };
        const Noting reading;
        (void)factsWith({}, reading);
        QCOMPARE(reading.asked, std::vector<std::string>{ "/home/someone/.config/user-dirs.dirs" });
    }

    void placesMoveWithTheirBase_data()
    {
        QTest::addColumn<Variables>("variables");
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("path");
        const auto trash = u"trash"_s;
        const auto files = u"What you threw away"_s;
        const auto tools = u"caches.devtools"_s;
        const auto pip = u"pip"_s;
        const auto data = [](const QString &value) { return Variables{ { u"XDG_DATA_HOME"_s, value } }; };
        const auto cache = [](const QString &value) { return Variables{ { u"XDG_CACHE_HOME"_s, value } }; };
        QTest::newRow("data") << data(home + u"/.data"_s) << trash << files << u".data/Trash/files"_s;
        QTest::newRow("cache") << cache(home + u"/.c/d"_s) << tools << pip << u".c/d/pip"_s;
        QTest::newRow("cache, of another base")
            << data(home + u"/.data"_s) << tools << pip << u".cache/pip"_s;
        QTest::newRow("config") << Variables{ { u"XDG_CONFIG_HOME"_s, home + u"/.settings"_s } }
                                << u"chrome.profile"_s << u"Chrome"_s << u".settings/google-chrome"_s;
        QTest::newRow("state") << Variables{ { u"XDG_STATE_HOME"_s, home + u"/.state"_s } }
                               << u"language.packages"_s << u"Cabal, built"_s << u".state/cabal/store"_s;
        QTest::newRow("spelt oddly") << data(home + u"//x/../.data/"_s) << trash << files
                                     << u".data/Trash/files"_s;
        QTest::newRow("no absolute path") << cache(u"c"_s) << tools << pip << u".cache/pip"_s;
        QTest::newRow("outside home") << data(u"/srv/data"_s) << trash << files << QString();
        QTest::newRow("begins like home") << data(home + u"else/data"_s) << trash << files << QString();
        QTest::newRow("out of home by dots")
            << data(home + u"/../other/data"_s) << trash << files << QString();
        QTest::newRow("home itself") << cache(home) << tools << pip << QString();
        QTest::newRow("where another base is") << cache(home + u"/.config"_s) << tools << pip << QString();
        QTest::newRow("inside another base")
            << cache(home + u"/.local/share/c"_s) << tools << pip << QString();
        QTest::newRow("around another base") << data(home + u"/.local"_s) << trash << files << QString();
        QTest::newRow("inside a place of its own")
            << cache(home + u"/snap/code/1"_s) << tools << pip << QString();
        QTest::newRow("around such a place") << cache(home + u"/.npm"_s) << tools << pip << QString();
        QTest::newRow("in a Flatpak") << Variables{ { u"FLATPAK_ID"_s, u"com.tarnwick.Quillbrook"_s },
            { u"XDG_DATA_HOME"_s, home + u"/.var/app/com.tarnwick.Quillbrook/data"_s },
            { u"HOST_XDG_DATA_HOME"_s, home + u"/.data"_s } }
                                      << trash << files << u".data/Trash/files"_s;
        const auto snap = home + u"/snap/quillbrook/1"_s;
        QTest::newRow("in a strict Snap")
            << Variables{ { u"SNAP"_s, u"/snap/quillbrook/1"_s }, { u"SNAP_USER_DATA"_s, snap },
                   { u"HOME"_s, snap }, { u"XDG_CACHE_HOME"_s, home + u"/snap/quillbrook/common/.cache"_s } }
            << tools << pip << u".cache/pip"_s;
    }

    void placesMoveWithTheirBase()
    {
        QFETCH(Variables, variables);
        QFETCH(QString, rule);
        QFETCH(QString, label);
        QTEST(placeOf(factsWith(variables).catalogue, rule, label), "path");
    }

    void movedBaseIsOpenToTheQuietScopeAndItsKeysAreProtected()
    {
        const auto facts = factsWith({ { u"XDG_DATA_HOME"_s, home + u"/kept/data"_s },
            { u"XDG_CACHE_HOME"_s, home + u"/kept/cache"_s }, { u"XDG_CONFIG_HOME"_s, u"/srv/settings"_s } });
        QVERIFY(facts.quietAllowlist.value(home).contains(u"kept"_s));
        QCOMPARE(facts.quietAllowlist.value(home + u"/kept"_s), QSet<QString>({ u"data"_s, u"cache"_s }));
        for (const auto &path : { home + u"/kept/data/keyrings"_s, u"/srv/settings/Bitwarden"_s,
                 home + u"/.local/share/keyrings"_s })
            QVERIFY2(facts.protectedPaths.contains(path), qPrintable(path));
    }

    void itemsMoveWithTheirPlaces()
    {
        const auto itemised = [](const HostCatalogue &catalogue) {
            QStringList paths;
            for (const auto &row : catalogue.itemisations)
                paths.append(row.ruleId + u':' + row.paths.join(u','));
            return paths;
        };
        const auto usual = itemised(factsWith({}).catalogue);
        auto moved = itemised(factsWith({ { u"XDG_CACHE_HOME"_s, home + u"/.c"_s } }).catalogue);
        QVERIFY(moved.contains(u"ai.huggingface:.c/huggingface/hub"_s));
        QCOMPARE(moved.replaceInStrings(u".c/"_s, u".cache/"_s), usual);
        // A row that has lost its last place is of none.
        const auto gone = itemised(factsWith({ { u"XDG_CACHE_HOME"_s, u"/srv/c"_s } }).catalogue);
        QVERIFY(!gone.contains(u"ai.huggingface:"_s));
        QVERIFY(gone.contains(u"python.envs:.local/share/virtualenvs"_s));
    }

    void cachesOfFlatpakAppsAreFoundOneByOne()
    {
        TempTree tree;
        // Not told: one with a place of its own in the tables, three that keep more than copies there, two
        // that are no application's name, one of them by its byte order mark alone, and a link.
        for (const auto *id : { "org.videolan.VLC", "org.one.App", "org.two.App", "org.three.App",
                 "com.google.Chrome", "org.darktable.Darktable", "com.jetbrains.CLion",
                 "org.inkscape.Inkscape", "notes", "\xef\xbb\xbforg.five.App" })
            tree.folder(".var/app/" + std::string(id));
        tree.link(".var/app/org.four.App", "org.one.App");
        FakeFileReading reading;
        const auto exported = tree.path(".local/share/flatpak/exports/share/applications/");
        reading.files[exported + "org.videolan.VLC.desktop"]
            = "# VLC\n[Desktop Entry]\nType=Application\n"
              "Name[de]=VLC auf Deutsch\nName=\xe2\x80\xae VLC\t\xe2\x80\xae\x1b player \n";
        reading.files["/var/lib/flatpak/exports/share/applications/org.one.App.desktop"]
            = "[Desktop Entry]\nName=App\n";
        reading.files[exported + "org.two.App.desktop"] = "[Desktop Entry]\nName=App\n";
        reading.files[exported + "org.three.App.desktop"] = "[Desktop Entry]\nName=\n[Other]\nName=Three\n";
        const auto facts = LinuxHostKnowledge(reading, {}).about(tree.path());
        QCOMPARE(described(facts.catalogue, u"flatpak.caches"_s),
            QStringList({ u".var/app/org.one.App/cache = org.one.App = org.one.App"_s,
                u".var/app/org.three.App/cache = org.three.App = org.three.App"_s,
                u".var/app/org.two.App/cache = org.two.App = org.two.App"_s,
                u".var/app/org.videolan.VLC/cache = VLC player = org.videolan.VLC"_s }));
    }

    void homeWhoseNameIsNotTextIsReadAsWell()
    {
        TempTree tree;
        const auto raw = tree.path("jos\xE9");
        tree.folder("jos\xE9/.var/app/org.one.App");
        tree.folder("jos\xE9/.config/chromium/Profile 1");
        FakeFileReading reading;
        reading.files[raw + "/.config/user-dirs.dirs"] = "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n";
        reading.files[raw + "/.local/share/flatpak/exports/share/applications/org.one.App.desktop"]
            = "[Desktop Entry]\nName=One\n";
        const auto facts = LinuxHostKnowledge(reading, {}).about(raw);
        QVERIFY(facts.protectedPaths.contains(repairedText(raw) + u"/Dokumente"_s));
        QCOMPARE(described(facts.catalogue, u"flatpak.caches"_s),
            QStringList{ u".var/app/org.one.App/cache = One = org.one.App"_s });
        QCOMPARE(described(facts.catalogue, u"browser.offline"_s).size(), 1);
    }

    void furtherProfilesAreFoundBesideTheFirst()
    {
        TempTree tree;
        for (const auto *name : { "Default", "Profile 2", "Profile 10", "Profile x", "Guest Profile" })
            tree.folder(".config/chromium/" + std::string(name));
        const auto facts = LinuxHostKnowledge(FakeFileReading(), {}).about(tree.path());
        QCOMPARE(described(facts.catalogue, u"browser.offline"_s),
            QStringList(
                { u".config/chromium/Profile 10/Service Worker/CacheStorage = Chromium, Profile 10 = "_s,
                    u".config/chromium/Profile 2/Service Worker/CacheStorage = Chromium, Profile 2 = "_s }));
    }
};

QUILLBROOK_SUITE(TestLinuxHostKnowledge, QCoreApplication)
#include "tst_LinuxHostKnowledge.moc"
