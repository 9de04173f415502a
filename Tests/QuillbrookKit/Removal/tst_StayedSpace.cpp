// Why space did not come back: what the system really tells, and what is made of it.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Folders/LinuxSpaceHolders.h"
#include "Removal/StayedSpace.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QTest>

#include <fcntl.h>
#include <filesystem>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Kind = StayedSpace::Reason::Kind;
constexpr qint64 mebibyte = qint64{ 1024 } * 1024;

struct Found
{
    qint64 linked = 0;
    std::vector<OpenFiles> open{};
    std::vector<QString> kept{};
    bool isExact = true;
};

struct MadeUpHolders final : SpaceHolders
{
    explicit MadeUpHolders(Found what)
        : found(std::move(what))
    {
    }

    struct Linked final : LinkedFiles
    {
        qint64 bytes = 0;
        qint64 bytesHeld() override { return bytes; }
    };

    Found found;

    [[nodiscard]] std::unique_ptr<LinkedFiles> linkedFiles(const std::vector<std::string> &) const override
    {
        auto files = std::make_unique<Linked>();
        files->bytes = found.linked;
        return files;
    }
    [[nodiscard]] std::vector<OpenFiles> openFiles(const std::vector<std::string> &) const override
    {
        return found.open;
    }
    [[nodiscard]] std::vector<QString> snapshots(const std::vector<std::string> &) const override
    {
        return found.kept;
    }
    [[nodiscard]] bool countsExactly(const std::string &) const override { return found.isExact; }
};

QStringList sentences(const Found &found, const StayedSpace::Removed &removed)
{
    const MadeUpHolders holders(found);
    StayedSpace stayed(holders, { "/home/me/x" });
    stayed.removalEnded();
    QStringList told;
    for (const auto &reason : stayed.reasons(removed))
        told.append(StayedSpace::sentence(reason));
    return told;
}

} // namespace

class TestStayedSpace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyWhatWasFoundIsTold()
    {
        const StayedSpace::Removed nothingCame{ .measured = 100 * mebibyte };
        const Found none;
        QCOMPARE(sentences(none, { .isInTrash = true }),
            QStringList{ u"It is in the Trash, which is on the same disk."_s });
        QCOMPARE(sentences(none, { .measured = 100 * mebibyte, .freeAfter = 95 * mebibyte }), QStringList());
        QCOMPARE(sentences(none, {}), QStringList());
        QCOMPARE(sentences({ .isExact = false }, nothingCame), QStringList());
        QCOMPARE(sentences(none, nothingCame), QStringList{ u"Other programs wrote 100 MB meanwhile."_s });
        QCOMPARE(
            sentences({ .linked = 60 * mebibyte, .open = { { u"player"_s, 35 * mebibyte } } }, nothingCame),
            (QStringList{ u"player still has some of it open."_s,
                u"60.0 MB of it is still there by another name."_s }));
        QCOMPARE(
            sentences({ .open = { { u"a"_s, 1 }, { u"b"_s, 1 } }, .kept = { u"7"_s, u"8"_s } }, nothingCame),
            (QStringList{ u"The snapshots 7, 8 still hold it."_s, u"a, b still have some of it open."_s }));
    }

    // A name inside of what goes is none that holds it, and neither is one of a file that was not removed.
    void fileWithANameOutsideIsStillThere()
    {
        const TempTree tree;
        tree.fileWith("goes/held", std::string(100'000, 'x'));
        tree.fileWith("goes/twice", std::string(200'000, 'x'));
        tree.fileWith("stays/file", std::string(400'000, 'x'));
        std::filesystem::create_hard_link(tree.path("goes/held"), tree.path("outside"));
        std::filesystem::create_hard_link(tree.path("goes/twice"), tree.path("goes/again"));
        std::filesystem::create_hard_link(tree.path("stays/file"), tree.path("elsewhere"));
        tree.link("goes/link", "../stays");
        const LinuxSpaceHolders holders;
        const auto files = holders.linkedFiles({ tree.path("goes"), tree.path("stays") });
        std::filesystem::remove_all(tree.path("goes"));
        const auto held = files->bytesHeld();
        QVERIFY2(held >= 100'000 && held < 150'000, qPrintable(QString::number(held)));
    }

    void programThatHasARemovedFileOpenIsNamed()
    {
        const TempTree tree;
        tree.fileWith("goes/open", std::string(100'000, 'x'));
        tree.fileWith("kept/open", std::string(100'000, 'x'));
        tree.fileWith("other/open", std::string(100'000, 'x'));
        const FileDescriptor goes(::open(tree.path("goes/open").c_str(), O_RDONLY | O_CLOEXEC));
        const FileDescriptor kept(::open(tree.path("kept/open").c_str(), O_RDONLY | O_CLOEXEC));
        const FileDescriptor other(::open(tree.path("other/open").c_str(), O_RDONLY | O_CLOEXEC));
        std::filesystem::remove_all(tree.path("goes"));
        std::filesystem::remove_all(tree.path("other"));
        const auto found = LinuxSpaceHolders().openFiles({ tree.path("goes"), tree.path("kept") });
        QCOMPARE(found.size(), size_t{ 1 });
        QVERIFY(QFileInfo(QCoreApplication::applicationFilePath()).fileName().startsWith(found[0].program));
        QVERIFY(found[0].bytes >= 100'000 && found[0].bytes < 150'000);
    }

    void snapshotThatHasItStillIsNamed()
    {
        const TempTree tree;
        tree.file(".snapshots/7/snapshot/home/me/x");
        tree.file(".snapshots/8/snapshot/home/me/other");
        tree.file(".snapshots/9/snapshot/home/me/x");
        tree.file("home/.zfs/snapshot/daily/me/x");
        const LinuxSpaceHolders holders(
            { .isSnapshot = [](const std::string &path) { return !path.ends_with("/9/snapshot"); } });
        QCOMPARE(holders.snapshots({ tree.path("home/me/x") }), (std::vector<QString>{ u"7"_s, u"daily"_s }));
        // A folder of that name on a disk without snapshots is no snapshot.
        QVERIFY(LinuxSpaceHolders().snapshots({ tree.path("home/me/x") }).empty());
    }
};

QUILLBROOK_SUITE(TestStayedSpace, QCoreApplication)
#include "tst_StayedSpace.moc"
