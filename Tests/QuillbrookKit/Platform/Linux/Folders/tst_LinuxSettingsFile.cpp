// Where the program's settings lie, and that Qt keeps them there whatever the folder's name.

#include "Platform/Linux/Folders/LinuxSettingsFile.h"
#include "Platform/SettingsUserDefaults.h"
#include "Support/FakeHomeFolder.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

// For the time of a test.
class SettingsVariable
{
public:
    explicit SettingsVariable(const std::optional<QByteArray> &told)
    {
        told ? qputenv("XDG_CONFIG_HOME", *told) : qunsetenv("XDG_CONFIG_HOME");
    }
    SettingsVariable(const SettingsVariable &) = delete;
    SettingsVariable &operator=(const SettingsVariable &) = delete;
    ~SettingsVariable()
    {
        m_before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", m_before);
    }

private:
    const QByteArray m_before = qgetenv("XDG_CONFIG_HOME");
};

std::string contentOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

} // namespace

class TestLinuxSettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEnvironmentIsAskedFirst_data()
    {
        QTest::addColumn<std::optional<QByteArray>>("told");
        QTest::addColumn<QString>("path");
        const auto usual = u"/home/someone/.config/Quillbrook/Quillbrook.conf"_s;
        QTest::newRow("nothing") << std::optional<QByteArray>() << usual;
        QTest::newRow("empty") << std::optional(QByteArray("")) << usual;
        QTest::newRow("relative") << std::optional(QByteArray("settings")) << usual;
        QTest::newRow("a path") << std::optional(QByteArray("/settings//"))
                                << u"/settings/Quillbrook/Quillbrook.conf"_s;
    }
    void theEnvironmentIsAskedFirst()
    {
        QFETCH(std::optional<QByteArray>, told);
        const SettingsVariable variable(told);
        QTEST(LinuxSettingsFile(FakeHomeFolder()).path(), "path");
    }

    void settingsLieInTheFolderOfThoseBytes_data()
    {
        QTest::addColumn<QByteArray>("home");
        QTest::addColumn<std::optional<QByteArray>>("told");
        QTest::newRow("a home of text") << QByteArray("home") << std::optional<QByteArray>();
        QTest::newRow("a home that is not UTF-8") << QByteArray("jos\xE9") << std::optional<QByteArray>();
        QTest::newRow("settings elsewhere, not UTF-8")
            << QByteArray("home") << std::optional(QByteArray("s\xE9t"));
    }
    void settingsLieInTheFolderOfThoseBytes()
    {
        QFETCH(QByteArray, home);
        QFETCH(std::optional<QByteArray>, told);
        const TempTree tree;
        tree.folder("place/" + home.toStdString());
        FakeHomeFolder folder;
        folder.raw = tree.path("place/" + home.toStdString());
        const auto settings
            = told ? "place/" + told->toStdString() : "place/" + home.toStdString() + "/.config";
        const SettingsVariable variable(
            told ? std::optional(QByteArray::fromStdString(tree.path(settings))) : std::nullopt);
        const LinuxSettingsFile file(folder);
        const auto key = u"Quillbrook.something"_s;
        {
            SettingsUserDefaults defaults(file.path());
            QVERIFY(!defaults.integer(key));
            defaults.setInteger(key, 12);
        }
        // In the place of what is there by now.
        {
            SettingsUserDefaults defaults(file.path());
            QCOMPARE(defaults.integer(key), std::optional<qint64>(12));
            defaults.setInteger(key, 13);
        }
        QCOMPARE(contentOf(tree.path(settings + "/Quillbrook/Quillbrook.conf")),
            "[General]\nQuillbrook.something=13\n");
        // Nothing of another spelling came to be beside it, and nothing else was left.
        namespace fs = std::filesystem;
        const auto count = [](const std::string &place) {
            return std::distance(fs::directory_iterator(place), fs::directory_iterator());
        };
        QCOMPARE(count(tree.path("place")), told ? 2 : 1);
        QCOMPARE(count(tree.path(settings + "/Quillbrook")), 1);
    }

    void aFolderThatCantBeMadeKeepsNothing()
    {
        const TempTree tree;
        tree.file("jos\xE9");
        FakeHomeFolder home;
        home.raw = tree.path("jos\xE9");
        const SettingsVariable variable({});
        const LinuxSettingsFile file(home);
        {
            SettingsUserDefaults defaults(file.path());
            defaults.setInteger(u"Quillbrook.something"_s, 12);
        }
        QVERIFY(!SettingsUserDefaults(file.path()).integer(u"Quillbrook.something"_s));
        namespace fs = std::filesystem;
        QCOMPARE(std::distance(fs::directory_iterator(tree.path()), fs::directory_iterator()), 1);
    }
};

QUILLBROOK_SUITE(TestLinuxSettingsFile, QCoreApplication)
#include "tst_LinuxSettingsFile.moc"
