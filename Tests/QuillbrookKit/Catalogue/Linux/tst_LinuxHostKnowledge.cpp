#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxHostKnowledge.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Support/FakeFileReading.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto home = u"/home/someone"_s;

} // namespace

class LinuxHostKnowledgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheTablesOfLinux();
    void protectsFoldersUnderTheNamesTheDesktopGivesThem();
    void readsNothingButTheDesktopsFolderNames();
};

void LinuxHostKnowledgeTest::tellsTheTablesOfLinux()
{
    const FakeFileReading reading;
    const auto facts = LinuxHostKnowledge(reading).about(home);
    QVERIFY(facts.catalogue == LinuxCatalogue::catalogue({}, home));
    QVERIFY(facts.catalogue.rules.size() >= LinuxCatalogue::safeRules().size());
    QCOMPARE(facts.quietAllowlist, LinuxQuietScope::allowlist(home));
    QCOMPARE(facts.protectedPaths, LinuxQuietScope::protectedPaths(home, {}));
}

void LinuxHostKnowledgeTest::protectsFoldersUnderTheNamesTheDesktopGivesThem()
{
    FakeFileReading reading;
    reading.files["/home/someone/.config/user-dirs.dirs"] = "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n";
    const auto facts = LinuxHostKnowledge(reading).about(home);
    QVERIFY(facts.protectedPaths.contains(home + u"/Bilder"_s));
    QVERIFY(!LinuxHostKnowledge(FakeFileReading()).about(home).protectedPaths.contains(home + u"/Bilder"_s));
}

void LinuxHostKnowledgeTest::readsNothingButTheDesktopsFolderNames()
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
    (void)LinuxHostKnowledge(reading).about(home);
    QCOMPARE(reading.asked, std::vector<std::string>{ "/home/someone/.config/user-dirs.dirs" });
}

QTEST_GUILESS_MAIN(LinuxHostKnowledgeTest)
#include "tst_LinuxHostKnowledge.moc"
