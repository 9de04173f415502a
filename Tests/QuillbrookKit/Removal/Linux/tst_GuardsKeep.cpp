// Two hundred thousand made-up paths, spelt in every odd way, over a real home folder full of links, where
// some of what is kept is a link itself and folders become links and folders again on the way: whatever the
// system would find at one of them that has to be kept, the guards refuse. What has to be kept is told here
// by what lies there (device and number of the file, and of every folder above it), never by how the path is
// spelt, so that the two judge independently.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Removal/Linux/LinuxGuards.h"
#include "Removal/PathRemoval.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <fcntl.h>
#include <filesystem>
#include <random>
#include <set>
#include <sys/stat.h>

using namespace Quillbrook;
using PathRemoval::refusal;

namespace {

// Of each of two spellings of the home folder.
constexpr int paths = 100'000;
constexpr int exchangeEvery = 500;
constexpr std::uint32_t seed = 20240615;

using Identity = std::pair<dev_t, ino_t>;

// What lies at a path, a link at its end not followed, and every folder from there to the root.
std::vector<Identity> lineage(const std::string &path)
{
    auto given = path;
    while (given.size() > 1 && given.ends_with('/'))
        given.pop_back();
    const auto slash = given.rfind('/');
    if (slash == std::string::npos)
        return {};
    const auto name = given.substr(slash + 1);
    FileDescriptor folder(::open((given.substr(0, slash) + '/').c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat status = {};
    // These name nothing in their folder, and are never acted on.
    if (name.empty() || name == "." || name == ".." || !folder.isOpen()
        || ::fstatat(folder.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return {};
    std::vector<Identity> line{ { status.st_dev, status.st_ino } };
    for (;;) {
        if (::fstat(folder.number(), &status) != 0)
            return {};
        const Identity here{ status.st_dev, status.st_ino };
        if (line.size() > 1 && here == line.back())
            return line;
        line.push_back(here);
        folder = FileDescriptor(::openat(folder.number(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
}

class Kept
{
public:
    void alone(const std::string &path) { add(m_alone, path); }
    void withAllInIt(const std::string &path) { add(m_whole, path); }
    void asALink(const std::string &path) { m_alone.insert(lineage(path).front()); }
    void withAllAboveIt(const std::string &path)
    {
        for (const auto &identity : lineage(path))
            m_alone.insert(identity);
    }

    [[nodiscard]] bool has(const std::vector<Identity> &line) const
    {
        if (line.empty())
            return false;
        return m_alone.contains(line.front())
            || std::ranges::any_of(line, [&](const auto &each) { return m_whole.contains(each); });
    }

private:
    static void add(std::set<Identity> &set, const std::string &path)
    {
        struct stat status = {};
        if (::stat(path.c_str(), &status) == 0)
            set.emplace(status.st_dev, status.st_ino);
    }

    std::set<Identity> m_alone;
    std::set<Identity> m_whole;
};

const std::vector<std::string> keptAlone{ "Music", "Downloads", "Desktop", "Templates", "Bilder",
    "T\u00e9l\u00e9chargements", ".config", ".cache", ".local", ".local/share", ".var", ".docker", "Library",
    "free/disk.qcow2" };
const std::vector<std::string> keptWhole{ ".ssh", ".gnupg", ".aws", "Dropbox", "Monero",
    "Library/Mobile Documents", ".local/share/Trash", ".local/share/flatpak", ".local/share/containers",
    "free/Photos.PHOTOSLIBRARY", "free/wine/drive_c", "free/Tool.AppDir", "Zotero", ".local/share/Quillbrook",
    "program" };
const std::vector<std::string> letGo{ "free", "free/a", "free/a/b", "free/wine", ".cache/pip", "Music/a",
    ".config/app", "free/music", "free/odd\xff\nname", "free/e\u0301", "Ssh", "music", "dropbox" };
const std::vector<std::pair<std::string, std::string>> links{ { "free/home", "../" },
    { "free/keys", "../.ssh" }, { "free/deep", "../.local/share/Trash/files" }, { "free/up", ".." },
    { "free/etc", "/etc" }, { "free/root", "/" }, { "Music/cache", "../.cache" },
    { ".cache/pip/out", "../../Dropbox" }, { "free/a/self", "self" }, { "free/a/keys2", "../keys" },
    { "free/usr", "/usr" } };
// Kept by where they lead, and what leads there.
const std::vector<std::pair<std::string, std::string>> keptLinks{ { "Documents", "data/docs" },
    { "Videos", "free/a/films" }, { ".pki", "../anna/dotfiles/pki" } };
// Exchanged for a link to what is kept, and back.
const std::vector<std::pair<std::string, std::string>> exchanged{ { "free/a/b", "../../.ssh" },
    { ".cache/pip", "../free/a" }, { "free/wine", "../data" } };

struct MadeUpDisk
{
    TempTree tree;
    // The home folder proper, and a path to it that leads through a link.
    std::string home = tree.path("homes/anna");
    std::string linkedHome = tree.path("linked/anna");
    Kept kept;

    MadeUpDisk()
    {
        tree.folder("homes/anna");
        tree.link("linked", "homes");
        for (const auto *list : { &keptAlone, &keptWhole, &letGo })
            for (const auto &name : *list)
                tree.folder("homes/anna/" + name + "/x/y");
        for (const auto &[name, target] : links)
            tree.link("homes/anna/" + name, target);
        for (const auto &[name, target] : keptLinks) {
            tree.folder("homes/anna/" + target + "/x/y");
            tree.link("homes/anna/" + name, target);
            kept.withAllAboveIt(home + '/' + target + "/");
            kept.asALink(home + '/' + name);
        }
        kept.withAllAboveIt(home);
        for (const auto &name : keptAlone)
            kept.alone(home + '/' + name);
        for (const auto &name : keptWhole)
            kept.withAllInIt(home + '/' + name);
        for (const auto *root : { "/usr", "/bin", "/sbin", "/etc", "/var", "/dev", "/boot", "/lib", "/lib64",
                 "/proc", "/sys", "/run", "/root", "/srv", "/opt" })
            kept.withAllInIt(root);
        kept.alone("/tmp");
    }

    // What a folder gives its name up to, and takes it from again.
    void exchange(size_t which) const
    {
        const auto &[name, target] = exchanged[which];
        const auto path = home + '/' + name;
        if (std::filesystem::is_symlink(path)) {
            std::filesystem::remove(path);
            std::filesystem::rename(path + ".real", path);
        } else {
            std::filesystem::rename(path, path + ".real");
            std::filesystem::create_symlink(target, path);
        }
    }

    [[nodiscard]] LinuxGuards::Places places() const
    {
        return { .userName = "anna",
            .homes = { home, linkedHome },
            .userFolders = { home + "/Bilder", home + "/T\u00e9l\u00e9chargements" },
            .trashes = { .homeTrash = home + "/.local/share/Trash", .user = 1000 },
            .ownFolders = { home + "/.local/share/Quillbrook", home + "/program" },
            .isMountPoint = [](const std::string &) { return false; } };
    }
};

class PathMaker
{
public:
    explicit PathMaker(const MadeUpDisk &disk)
        : m_starts{ disk.home, disk.home, disk.linkedHome, disk.tree.path(), disk.home + "/free",
            disk.home + "/free", disk.home + "/free/home", "/", "", "/tmp", "/proc/self/root" + disk.home }
    {
        for (const auto *list : { &keptAlone, &keptWhole, &letGo })
            m_names.insert(m_names.end(), list->begin(), list->end());
        for (const auto &link : links)
            m_links.push_back(link.first.substr(link.first.rfind('/') + 1));
        for (const auto &[name, target] : keptLinks)
            m_names.insert(m_names.end(), { name, target, target.substr(0, target.find('/')) });
        for (const auto *name :
            { "x", "y", "..", "..", "..", ".", "", "...", "homes", "anna", "linked", "etc", "usr", "passwd",
                "home", "files", "info", "\xff", "a\tb", "MUSIC", "Te\u0301le\u0301chargements", "~" })
            m_names.emplace_back(name);
    }

    [[nodiscard]] std::string next()
    {
        auto path = m_starts[number(m_starts.size())];
        const auto count = number(6);
        for (size_t i = 0; i < count; ++i)
            path += std::string(number(8) == 0 ? 1 + number(3) : 1, '/') + name();
        if (number(6) == 0)
            path += std::string(1 + number(2), '/');
        if (number(10) == 0)
            path += "/.";
        return path;
    }

private:
    // Links, and ways up from behind them, are what spelling tells least about.
    [[nodiscard]] std::string name()
    {
        const auto kind = number(6);
        if (kind == 0)
            return "..";
        return kind == 1 ? m_links[number(m_links.size())] : m_names[number(m_names.size())];
    }
    [[nodiscard]] size_t number(size_t below) { return m_numbers() % below; }

    std::mt19937 m_numbers{ seed };
    std::vector<std::string> m_starts;
    std::vector<std::string> m_names;
    std::vector<std::string> m_links;
};

} // namespace

class TestGuardsKeep : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingThatHasToBeKeptIsLetGo_data()
    {
        QTest::addColumn<bool>("byItsLinkedPath");
        QTest::newRow("home folder by its own path") << false;
        QTest::newRow("home folder by a path through a link") << true;
    }

    void nothingThatHasToBeKeptIsLetGo()
    {
        QFETCH(bool, byItsLinkedPath);
        const MadeUpDisk disk;
        const auto &home = byItsLinkedPath ? disk.linkedHome : disk.home;
        const auto guards = LinuxGuards::guards(disk.places());
        PathMaker maker(disk);
        int keptOnes = 0;
        int letGoOnes = 0;
        for (int i = 0; i < paths; ++i) {
            if (i % exchangeEvery == 0)
                disk.exchange(static_cast<size_t>(i / exchangeEvery) % exchanged.size());
            const auto path = maker.next();
            const auto line = lineage(path);
            const auto sentence = refusal(path, home, &guards);
            const bool isKept = disk.kept.has(line);
            keptOnes += isKept ? 1 : 0;
            letGoOnes += !sentence && !line.empty() ? 1 : 0;
            QVERIFY2(!isKept || sentence, path.c_str());
        }
        // Otherwise a guard that refuses everything would do, or a maker of paths that lead nowhere.
        QVERIFY2(keptOnes > paths / 10, qPrintable(QString::number(keptOnes)));
        QVERIFY2(letGoOnes > paths / 50, qPrintable(QString::number(letGoOnes)));
    }
};

QUILLBROOK_SUITE(TestGuardsKeep, NoApplication)
#include "tst_GuardsKeep.moc"
