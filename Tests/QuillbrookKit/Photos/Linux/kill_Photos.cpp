// Moves pictures to the Trash, or fails to, or puts them back, in a child that is killed at every one of its
// system calls; starts anew, and compares pictures, Trash and list.

#include "Photos/Linux/PhotoRemoval.h"
#include "Photos/Linux/PhotoWalk.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Files/LinuxFileFacts.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Trash/LinuxFileRemoval.h"
#include "Platform/Linux/Trash/LinuxTrash.h"
#include "Support/FakeSpaceReserve.h"
#include "Support/KilledAtCall.h"
#include "Support/MadePictures.h"
#include "Support/RootGivenUp.h"
#include "Support/TrashFixture.h"

#include <QLoggingCategory>

#include <filesystem>
#include <set>

using namespace Quillbrook;
namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

[[noreturn]] void fail(const std::string &what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

// Names that are taken in the Trash by the time their turn comes, and such as are no text.
constexpr std::array names{ "1.jpg", "a/1.jpg", "a/1.cr2", "b/1.jpg", "odd\xff\n.png" };

/// Some pictures of one range, each with a content of its own, and a trash with something of somebody else.
class Home
{
public:
    Home()
    {
        for (const auto *name : names) {
            m_tree.fileWith(std::string("Pictures/") + name, name);
            touchPicture(m_tree, std::string("Pictures/") + name, noon(2019, 6, 1));
        }
        m_tree.fileWith(".local/share/Trash/files/foreign", "not ours");
        m_tree.fileWith(".local/share/Trash/info/foreign.trashinfo",
            "[Trash Info]\nPath=/elsewhere\nDeletionDate=2024-01-01T00:00:00\n");
    }

    [[nodiscard]] std::shared_ptr<const LinuxPhotoAssets> assets() const
    {
        PhotoWork work;
        PhotoWalk walk(
            PhotoQuery::ofRange(noon(2019, 1, 1), noon(2020, 1, 1), true), [](const auto &) { return false; },
            work);
        std::ignore = walk.walk({ .path = m_tree.path("Pictures") });
        return walk.take();
    }
    [[nodiscard]] Files pictures() const { return TrashFixture::everything(m_tree.path("Pictures")); }
    [[nodiscard]] std::string path() const { return m_tree.path(); }
    [[nodiscard]] std::string trash() const { return m_tree.path(".local/share/Trash"); }

private:
    TempTree m_tree;
};

/// All that a program has, as one start of it.
struct Start
{
    FakeSpaceReserve reserve;
    SystemClock clock;
    LinuxFileFacts files;
    LinuxFileReading reading;
    LinuxFileWriting writing;
    LinuxFileRemoval erasing;
    LinuxTrash trash;
    PhotoRemoval removal;

    explicit Start(const Home &home)
        : trash({ .homeTrash = home.trash(), .user = ::getuid() }, reserve, clock)
        , removal({ .removal = { .trash = trash, .removal = erasing, .files = files, .clock = clock },
              .reading = reading,
              .writing = writing,
              .home = home.path(),
              .list = home.path() + "/data/photos.jsonl" })
    {
    }

    [[nodiscard]] bool move(const LinuxPhotoAssets &assets)
    {
        PhotoWork work;
        return removal.moveAll(assets, work).succeeded;
    }
    PhotoReturn putBack()
    {
        PhotoWork work;
        return removal.putBack(work);
    }
};

size_t filesIn(const Files &found)
{
    return static_cast<size_t>(
        std::ranges::count_if(found, [](const auto &each) { return each.second != "folder"; }));
}

// Whatever was cut short: each picture is at home or in the Trash, all in the Trash can be put back, and then
// everything is as it was.
void compare(const Home &home, const Files &before, const std::string &when)
{
    Start start(home);
    std::set<std::string> held{ home.trash() + "/files/foreign" };
    for (const auto &item : start.removal.held())
        held.insert(item.trashPath);
    const auto inTrash = TrashFixture::names(home.trash() + "/files");
    std::set<std::string> found;
    std::vector<std::string> notes;
    for (const auto &name : inTrash) {
        found.insert(home.trash() + "/files/" + name);
        notes.push_back(name + ".trashinfo");
    }
    if (held != found)
        fail(when + ": " + std::to_string(held.size() - 1) + " of " + std::to_string(found.size() - 1)
            + " pictures in the Trash are known");
    std::ranges::sort(notes);
    if (notes != TrashFixture::names(home.trash() + "/info"))
        fail(when + ": pictures and notes in the Trash do not match");
    if (filesIn(home.pictures()) + inTrash.size() - 1 != filesIn(before))
        fail(when + ": a picture is gone, or is there twice");
    const auto result = start.putBack();
    if (result.returned != static_cast<qsizetype>(inTrash.size()) - 1 || !result.stayed.isEmpty())
        fail(when + ": not all could be put back");
    if (home.pictures() != before || TrashFixture::content(home.trash() + "/files/foreign") != "not ours")
        fail(when + ": something has changed");
    if (!Start(home).removal.held().empty())
        fail(when + ": a second start knows of something");
}

enum class Job : std::uint8_t { move, failToMove, putBack };

// One run that is killed at its call `kill`; whether there was such a call.
bool kills(Job job, long kill, const std::string &when)
{
    const Home home;
    const auto assets = home.assets();
    if (job == Job::failToMove)
        fs::remove(assets->path(assets->shots().back().files.back()));
    const auto before = home.pictures();
    if (job == Job::putBack && !Start(home).move(*assets))
        fail(when + ": nothing was moved");
    const bool isKilled = KilledAtCall([&] {
        Start start(home);
        if (job == Job::putBack)
            start.putBack();
        else if (start.move(*assets) != (job == Job::move))
            fail(when + ": it did not come to the end it should");
    }).at(kill);
    compare(home, before, when + " killed at call " + std::to_string(kill));
    return isKilled;
}

} // namespace

int main()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    giveUpRoot();
    KilledAtCall::prepare();
    for (const auto &[job, when] : { std::pair(Job::move, "moving"), std::pair(Job::failToMove, "failing"),
             std::pair(Job::putBack, "putting back") }) {
        long kill = 0;
        while (kills(job, kill + 1, when))
            ++kill;
        std::printf("%s: %ld kills\n", when, kill);
        std::fflush(stdout);
    }
    return 0;
}
