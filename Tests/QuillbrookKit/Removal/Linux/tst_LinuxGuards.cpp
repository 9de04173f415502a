// What a Linux desktop adds to the guards: each row beside what it only nearly meets, links that lead into
// what is kept, and the places of this process.

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "RawText.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Support/FakeHomeFolder.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QCoreApplication>
#include <QTest>

#include <algorithm>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using PathRemoval::refusal;

namespace {

const std::string home = "/home/anna";

LinuxGuards::Places madeUp(const std::string &homePath)
{
    return { .userName = "anna",
        .homes = { homePath },
        .userFolders = { homePath + "/Bilder", homePath + "/Daten/T\u00e9l\u00e9chargements", "/data/Musik" },
        .trashes = { .homeTrash = homePath + "/.local/share/Trash", .user = 1000 },
        .programFiles
        = { "/home/anna/Apps/Quillbrook/bin/quillbrook", "/home/anna/Apps/Quillbrook.AppImage" },
        .ownFolders = { homePath + "/.local/share/Quillbrook" },
        .isMountPoint = [](const std::string &path) { return path == "/data" || path == "/home/anna/usb"; } };
}

// The made-up home is on no disk: nothing there, so every path leads where it says.
std::optional<QString> judged(const std::string &path)
{
    static const auto guards = LinuxGuards::guards(madeUp(home));
    return refusal(path, home, &guards);
}

class RawHomeFolder final : public HomeFolder
{
public:
    QString homeDirectory() const override { return repairedText(path); }
    QString realHomeDirectory() const override { return repairedText(path); }
    std::string rawHomeDirectory() const override { return path; }
    std::string rawRealHomeDirectory() const override { return path; }

    std::string path;
};

QString own(const QString &name)
{
    return name
        + u" is one of your home folder's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s;
}

QString apps(const QString &name)
{
    return name
        + u" is where all your apps keep their things. Quillbrook can clear things inside it, but will not remove the folder itself."_s;
}

QString system(const QString &path, const QString &root)
{
    return path + u" belongs to the system. Quillbrook does not remove anything inside "_s + root + u'.';
}

} // namespace

class TestLinuxGuards : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // The machine's own would hide what a case puts in the usual place.
        qunsetenv("XDG_CONFIG_HOME");
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QString>("sentence");
        const auto row = [](const char *path, const QString &sentence) {
            QTest::newRow(path) << QByteArray(path) << sentence;
        };
        const auto rows = [](std::initializer_list<const char *> paths, const QString &sentence) {
            for (const auto *path : paths)
                QTest::newRow(path) << QByteArray(path) << sentence;
        };

        row("/home", u"That holds the home folders of everyone on this computer."_s);
        rows({ "/home/bob", "/home/annabel/x", "/home/.ecryptfs/anna" },
            u"That is in someone else's home folder."_s);
        row("/nix/store/x",
            u"/nix/store/x belongs to Nix, which keeps its own record of what is in use. Let Nix clear what it no longer needs."_s);
        row("/gnu",
            u"/gnu belongs to Guix, which keeps its own record of what is in use. Let Guix clear what it no longer needs."_s);
        row("/snap/x",
            u"/snap/x belongs to Snap. Remove the app in your app store, and its space comes back."_s);
        row("/opt/x",
            u"/opt/x is an app installed for everyone on this computer. Remove it the way it was installed."_s);
        rows({ "/run/media/anna", "/run/media/anna/USB", "/run/media/bob/USB", "/media/USB",
                 "/media/anna/USB", "/mnt/X", "/data", "/home/anna/usb" },
            u"That is an entire drive, not something on it."_s);
        for (const auto *root : { "/boot", "/efi", "/lib", "/lib32", "/lib64", "/libx32", "/srv", "/root",
                 "/proc", "/sys", "/run", "/ostree", "/sysroot", "/lost+found" }) {
            const auto text = QString::fromLatin1(root);
            row(root, system(text, text));
            QTest::addRow("%s/inside", root)
                << (text + u"/inside"_s).toUtf8() << system(text + u"/inside"_s, text);
        }
        row("/swapfile", system(u"/swapfile"_s, u"/swapfile"_s));
        row("/run/user/1000/gvfs/x", system(u"/run/user/1000/gvfs/x"_s, u"/run"_s));
        for (const auto &[path, name] :
            std::initializer_list<std::pair<const char *, QString>>{ { "/tmp", u"tmp"_s },
                { "/media", u"media"_s }, { "/mnt", u"mnt"_s }, { "/run/media", u"media"_s } })
            row(path,
                name
                    + u" is one of the system's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s);

        row("~/Templates", own(u"Templates"_s));
        row("~/Videos", own(u"Videos"_s));
        row("~/Bilder", own(u"Bilder"_s));
        row("~/Daten/Te\u0301le\u0301chargements", own(u"Daten/T\u00e9l\u00e9chargements"_s));
        row("~/Daten", own(u"Daten/T\u00e9l\u00e9chargements"_s));
        row("/data/Musik", own(u"/data/Musik"_s));
        for (const auto *name : { ".config", ".local", ".local/share", ".local/state", ".local/bin",
                 ".local/lib", ".cache", ".var", ".var/app", "snap" })
            QTest::addRow("~/%s", name)
                << QByteArray("/home/anna/") + name << apps(QString::fromLatin1(name));

        rows({ "~/.ssh", "~/.ssh/id_ed25519", "~/.gnupg/x", "~/.pki", "~/.password-store/a",
                 "~/.local/share/keyrings", "~/.local/share/kwalletd/x", "~/.local/share/pass",
                 "~/.config/Bitwarden", "~/.config/1Password/x", "~/.config/keepassxc", "~/.config/sops/age",
                 "~/.config/rclone", "~/.config/gh/hosts.yml", "~/.config/gcloud", "~/.aws", "~/.azure",
                 "~/.kube/config", "~/.netrc", "~/.git-credentials", "~/.docker/config.json", "~/.docker" },
            u"That is where your keys and passwords are kept. Losing them can lock you out for good, so Quillbrook leaves them alone."_s);
        row("/data/safe.KDBX",
            u"safe.KDBX is a password safe. Losing it can lock you out for good, so Quillbrook leaves it alone."_s);
        rows({ "~/.bitcoin", "~/.litecoin/x", "~/.ethereum", "~/.bitmonero", "~/.electrum/wallets/x",
                 "~/.config/Exodus", "~/Monero/wallets" },
            u"That can hold a digital wallet. Whatever is in it would be gone for good, so Quillbrook leaves it alone."_s);
        rows({ "~/.Private", "~/.ecryptfs/x", "~/.fscrypt" },
            u"That is where your encrypted files are really kept. Taking a piece out makes them unreadable."_s);
        for (const auto *name :
            { "Dropbox", "Nextcloud", "ownCloud", "OneDrive", "MEGA", "Insync", "Seafile", "pCloudDrive" })
            for (const auto *below : { "", "/Photos/2020" })
                QTest::addRow("~/%s%s", name, below)
                    << QByteArray("/home/anna/") + name + below
                    << u"That is in %1, which is shared with your other devices. Removing it here removes it there too, so it is not Quillbrook's to take."_s
                           .arg(QLatin1StringView(name));
        row("~/.gvfs/x",
            u"That lives on another computer or belongs to another app. It takes no space here."_s);
        rows({ "~/.local/share/Trash", "~/.local/share/Trash/files", "~/.local/share/Trash/info/",
                 "~/.local/share/Trash/expunged", "~/.local/share/Trash/directorysizes", "/.Trash-1000/files",
                 "/data/.Trash", "/data/.Trash-1001", "/data/.Trash/1001" },
            u"That is the Trash itself. Empty it instead, and the space comes back."_s);
        rows({ "~/.local/share/Trash/files/a", "~/.local/share/Trash/files/a/b", "~/.local/share/Trash/other",
                 "/.Trash-1000/files/a", "/.Trash/1000/files/a" },
            u"That is already in the Trash. Empty the Trash to get the space back."_s);
        row("~/.local/share/flatpak/app",
            u"~/.local/share/flatpak/app belongs to Flatpak, which keeps its own record of what is installed. Remove the app in your app store instead."_s);
        rows({ "~/.local/share/containers", "~/.local/share/docker/x", "~/.docker/desktop/vms",
                 "~/.local/share/waydroid" },
            u"That is where containers are kept. Taking a piece out breaks them, and a database in there may be the only copy. Remove containers with the app that made them."_s);
        for (const auto *ending : { "qcow2", "qcow", "vdi", "vmdk", "vhd", "vhdx", "VBOX" })
            QTest::addRow("~/m.%s", ending)
                << QByteArray("/home/anna/m.") + ending
                << u"m.%1 is part of a virtual machine. Remove the machine in the app that made it."_s.arg(
                       QLatin1StringView(ending));
        row("~/.wine/drive_c/x",
            u"That is inside drive_c, a Windows folder that programs depend on. Taking a piece out breaks them. Remove the program in the app that installed it."_s);
        row("~/games/pfx",
            u"That is inside pfx, a Windows folder that programs depend on. Taking a piece out breaks them. Remove the program in the app that installed it."_s);
        row("~/Editor.AppDir",
            u"Editor.AppDir looks like a folder but is one single file. It belongs to the app that made it, so Quillbrook leaves it alone."_s);
        row("~/Calibre Library",
            u"Calibre Library looks like a folder but is one single file. It belongs to the app that made it, so Quillbrook leaves it alone."_s);
        row("~/Zotero/storage",
            u"That is inside Zotero, which looks like a folder but is one single file. Taking a piece out of it breaks the whole thing."_s);
        row("/data/x.appdir/usr",
            u"That is inside x.appdir, which looks like a folder but is one single file. Taking a piece out of it breaks the whole thing."_s);
        rows({ "~/Apps/Quillbrook/bin/quillbrook", "~/Apps/Quillbrook/bin", "~/Apps/Quillbrook", "~/Apps",
                 "~/Apps/Quillbrook.AppImage", "~/.local/share/Quillbrook",
                 "~/.local/share/Quillbrook/ledger.json" },
            u"That is Quillbrook itself."_s);
    }

    void refuses()
    {
        QFETCH(QByteArray, path);
        QFETCH(QString, sentence);
        QCOMPARE(judged(path.toStdString()).value_or(u"(let)"_s), sentence);
    }

    void lets_data()
    {
        QTest::addColumn<QByteArray>("path");
        for (const auto *path :
            { "~/.cache/pip", "~/.config/Code/Cache", "~/.local/share/Steam", "~/.var/app/org.x", "~/snap/x",
                "~/Videos/a", "~/videos", "~/Bilder/x", "~/deep/Bilder", "~/Daten/x", "~/.sshx", "~/.ssh2/x",
                "~/deep/.ssh", "~/.caches", "~/.docker/desktops", "~/.docker/config.json2", "~/.config/ghx",
                "~/Dropbox2", "~/deep/Dropbox", "~/dropbox", "~/Monero2", "~/.gvfs2",
                "~/.local/share/Trash2/files/a", "~/.local/share/flatpaks", "~/.local/share/dockers",
                "~/m.vd", "~/m.qcow2.txt", "~/.vdi", "~/drive_c2/x", "~/pfxs", "~/x.appdirs", "~/deep/Zotero",
                "~/Zotero2", "~/safe.kdbx.bak", "~/Apps/Quillbrook/bin/other", "~/Apps/Other",
                "~/.local/share/Quillbrook2", "/tmp/x", "/tmps", "/media/anna/USB/x", "/media/USB/x/y",
                "/mnt/X/y", "/run/media/anna/USB/x", "/data/x", "/data/Musik/x", "/data/.Trash-1001/files/a",
                "/data/copy/.Trash", "/data/copy/.Trash-1000/files/a", "/boots", "/lib65/x", "/nixos/x",
                "/options", "/snapshots/x", "/swapfile2", "/homes/x" })
            QTest::newRow(path) << QByteArray(path);
    }

    void lets()
    {
        QFETCH(QByteArray, path);
        QCOMPARE(judged(path.toStdString()).value_or(u"(let)"_s), u"(let)"_s);
    }

    void builtInRowsComeFirst()
    {
        QCOMPARE(
            judged("/usr/x"), u"/usr/x belongs to macOS. Quillbrook does not remove anything inside /usr."_s);
        QCOMPARE(judged("~/Music"),
            u"Music is one of your Mac's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s);
        QVERIFY(judged("~/.local/share/Trash/files/x.band")->startsWith(u"x.band looks like a folder"_s));
    }

    void homeBelowASystemRootIsTheUsersOwn()
    {
        const std::string varHome = "/var/home/anna";
        auto places = madeUp(varHome);
        const auto guards = LinuxGuards::guards(places);
        const auto at
            = [&](const std::string &path) { return refusal(path, varHome, &guards).value_or(u"(let)"_s); };
        QCOMPARE(at("/var/home/anna/.cache/pip"), u"(let)"_s);
        QCOMPARE(at("/var/home/anna"), u"That is your home folder."_s);
        QCOMPARE(at("/var/home/anna/.ssh/x").left(33), u"That is where your keys and passw"_s);
        QVERIFY(at("/var/home/bob/x") != u"(let)"_s);
        QVERIFY(at("/var/home") != u"(let)"_s);
        QVERIFY(at("/var/lib/flatpak/app") != u"(let)"_s);
        const auto rootGuards = LinuxGuards::guards(madeUp("/root"));
        QVERIFY(!refusal("/root/.cache/x", "/root", &rootGuards));
        // A home that is the root of the disk spares nothing.
        const auto wholeDisk = LinuxGuards::guards(madeUp("/"));
        for (const auto *path : { "/etc/x", "/boot/x", "/nix/store/x", "/opt/x" })
            QVERIFY2(refusal(path, "/", &wholeDisk), path);
    }

    void homeByItsOtherPath()
    {
        const TempTree tree;
        tree.file("var/home/anna/.ssh/id");
        tree.file("var/home/anna/x");
        tree.link("home", "var/home");
        const auto linked = tree.path("home/anna");
        const auto real = tree.path("var/home/anna");
        for (const auto &[at, other] : { std::pair(linked, real), std::pair(real, linked) }) {
            auto places = madeUp(at);
            places.homes.push_back(real);
            const auto guards = LinuxGuards::guards(places);
            for (const auto &way : { linked, real }) {
                QCOMPARE(refusal(way, at, &guards), u"That is your home folder."_s);
                QVERIFY(refusal(way + "/.ssh/id", at, &guards));
                QVERIFY(refusal(way + "/Music", at, &guards));
                QVERIFY(!refusal(way + "/x", at, &guards));
            }
            QCOMPARE(refusal(tree.path("var"), at, &guards), u"That holds your home folder."_s);
            std::ignore = other;
        }
    }

    void linksIntoWhatIsKeptAreRefused_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("isRefused");
        QTest::newRow("through a link into keys") << QByteArray("way/id") << true;
        QTest::newRow("through two links") << QByteArray("way2/id") << true;
        QTest::newRow("through a link to the home folder") << QByteArray("home/.ssh") << true;
        QTest::newRow("the home folder's own by a link") << QByteArray("home/Music") << true;
        QTest::newRow("up from behind a link") << QByteArray("deepway/../../.ssh/id") << true;
        QTest::newRow("up and out from behind a link") << QByteArray("deepway/..") << true;
        QTest::newRow("into the system") << QByteArray("system/passwd") << true;
        QTest::newRow("what nothing leads to") << QByteArray("way/gone") << true;
        QTest::newRow("a link by its own path") << QByteArray("way") << false;
        QTest::newRow("a link by its own path, with a slash") << QByteArray("system/") << false;
        QTest::newRow("through a link to what may go") << QByteArray("home/x") << false;
        QTest::newRow("not there") << QByteArray("nowhere/at/all") << false;
        QTest::newRow("in a circle") << QByteArray("circle/x") << false;
    }

    void linksIntoWhatIsKeptAreRefused()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, isRefused);
        const TempTree tree;
        tree.file(".ssh/id");
        tree.file("x");
        tree.file("a/b/c");
        tree.folder("Music");
        tree.link("way", ".ssh");
        tree.link("way2", "way");
        tree.link("home", ".");
        tree.link("deepway", "a/b");
        tree.link("system", "/etc");
        tree.link("circle", "circle");
        tree.link("a/Music", "..");
        const auto guards = LinuxGuards::guards(madeUp(tree.path()));
        const auto sentence = refusal(tree.path(path.toStdString()), tree.path(), &guards);
        QVERIFY2(sentence.has_value() == isRefused, qPrintable(sentence.value_or(u"(let)"_s)));
    }

    // Longer than the system takes at once, which the guards must not take for leading nowhere.
    void longPathsAreFollowedToo()
    {
        const TempTree tree;
        tree.file(".ssh/id");
        tree.link("way", ".ssh");
        tree.folder("a");
        const auto guards = LinuxGuards::guards(madeUp(tree.path()));
        std::string detour;
        for (int i = 0; i < 3000; ++i)
            detour += "a/../";
        QVERIFY(refusal(tree.path(detour + "way/id"), tree.path(), &guards));
        QVERIFY(!refusal(tree.path(detour + "a"), tree.path(), &guards));
    }

    void placesOfThisProcess()
    {
        const TempTree tree;
        tree.fileWith(".config/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Klang\"\nXDG_VIDEOS_DIR=\"$HOME/\"\n");
        FakeHomeFolder homeFolder;
        homeFolder.home = tree.text();
        homeFolder.realHome = tree.text();
        const LinuxFileReading reading;
        const auto places = LinuxGuards::places(homeFolder, reading);
        const auto guards = LinuxGuards::guards(places);
        // Not by what is said of it: it may lie in a folder of the system's.
        const auto program = QCoreApplication::applicationFilePath().toStdString();
        QVERIFY(std::ranges::find(places.programFiles, program) != places.programFiles.end());
        const auto at = [&](const std::string &path) {
            return refusal(path, tree.path(), &guards).value_or(u"(let)"_s);
        };
        QVERIFY(at(program) != u"(let)"_s);
        QCOMPARE(at(tree.path("Klang")), own(u"Klang"_s));
        QCOMPARE(at(tree.path("x")), u"(let)"_s);
        QCOMPARE(at(tree.path(".var/app/com.tarnwick.Quillbrook/data")), u"That is Quillbrook itself."_s);
        QCOMPARE(at("/proc"), u"That is an entire drive, not something on it."_s);
    }

    void userFoldersAreReadWhereTheSettingsAre()
    {
        const TempTree tree;
        tree.fileWith("settings/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Klang\"\n");
        FakeHomeFolder homeFolder;
        homeFolder.home = tree.text();
        homeFolder.realHome = tree.text();
        qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(tree.path("settings")));
        const auto guards = LinuxGuards::guards(LinuxGuards::places(homeFolder, LinuxFileReading()));
        QCOMPARE(refusal(tree.path("Klang"), tree.path(), &guards), own(u"Klang"_s));
    }

    void homeThatIsNotUtf8IsKnownByItsBytes()
    {
        const TempTree tree;
        tree.fileWith("j\xf6rg/.config/user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/Klang\"\n");
        RawHomeFolder home;
        home.path = tree.path("j\xf6rg");
        const auto guards = LinuxGuards::guards(LinuxGuards::places(home, LinuxFileReading()));
        const auto at
            = [&](const std::string &path) { return refusal(path, home.path, &guards).value_or(u"(let)"_s); };
        QCOMPARE(at(tree.path()), u"That holds your home folder."_s);
        QCOMPARE(at(home.path + "/Klang"), own(u"Klang"_s));
        QCOMPARE(at(home.path + "/.var/app/com.tarnwick.Quillbrook/data"), u"That is Quillbrook itself."_s);
        QCOMPARE(at(home.path + "/x"), u"(let)"_s);
    }
};

QUILLBROOK_SUITE(TestLinuxGuards, QCoreApplication)
#include "tst_LinuxGuards.moc"
