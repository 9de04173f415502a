// What lies behind links on another volume, and the way back from there.

#include "Offload/MovedThings.h"
#include "RawText.h"
#include "Support/Suite.h"
#include "Support/TwoVolumes.h"

#include <QTest>

#include <sys/mount.h>

using namespace Quillbrook;
using namespace Quillbrook::PrivateMounts;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 block = 4096;

std::vector<MovedThing> answeredBelow(const OffloadServices &services, const StorageCatalogue::Places &places)
{
    std::vector<MovedThing> things;
    for (const auto &link : Offload::links(services, places))
        if (const auto thing = Offload::answered(services, link))
            things.push_back(*thing);
    return things;
}

// The models of one rule lie on the volume, behind a link.
struct MovedFixture : TwoVolumes
{
    MovedFixture()
    {
        home.fileWith("volume/models/large", std::string(5 * block, 'l'));
        home.fileWith("volume/models/\xFF", "odd");
        home.folder(".ollama");
        home.link(".ollama/models", onVolume("models"));
    }

    [[nodiscard]] std::vector<MovedThing> things()
    {
        return answeredBelow(services(), { .homeDirectory = home.text(), .host = &host });
    }
    [[nodiscard]] std::expected<Offload::Returned, OffloadError> bringBack(
        const MovedThing &thing, const std::stop_token &stop = {})
    {
        return Offload::bringBack(services(), { .thing = thing, .stop = stop });
    }
    [[nodiscard]] QString failure(const MovedThing &thing, const std::stop_token &stop = {})
    {
        const auto result = bringBack(thing, stop);
        return result ? u"it did not fail"_s : result.error().description();
    }
    /// Nothing has changed: the link leads to the whole, and nothing lies beside it.
    [[nodiscard]] bool isAsBefore() const
    {
        return names(home.path(".ollama")) == std::vector<std::string>{ "models" }
        && std::filesystem::is_symlink(home.path(".ollama/models"))
            && content(home.path(".ollama/models/large")) == std::string(5 * block, 'l');
    }

    HostCatalogue host{ .rules
        = { { .rule = { .id = u"host.cold"_s, .title = u"Cold things"_s, .paths = { u"cold"_s } },
            .locations = { { .path = u"cold"_s, .label = u"Cold"_s } } } },
        .suitability = { { u"host.cold"_s, std::nullopt } } };
};

} // namespace

class TestMovedThings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesAreFoundInAHomeWhoseNameIsNotText()
    {
        MovedFixture f;
        f.home.folder("jos\xE9/.ollama");
        f.home.link("jos\xE9/.ollama/models", f.onVolume("models"));
        const auto raw = f.home.path("jos\xE9");
        const auto things = answeredBelow(
            f.services(), { .homeDirectory = repairedText(raw), .rawHome = raw, .host = &f.host });
        QCOMPARE(things.size(), 1U);
        QCOMPARE(things[0].place, raw + "/.ollama/models");
    }

    void placesAreFoundByTheirLinks()
    {
        MovedFixture f;
        f.home.link("cold", "/media/someone/Archive/cold");
        // Neither a link to the same volume, nor one of what must stay, nor a folder is any.
        f.home.folder("elsewhere");
        f.home.folder(".android");
        f.home.link(".android/avd", f.home.path("elsewhere"));
        f.home.link(".gradle", f.onVolume("models"));
        f.home.folder("Library/Developer/Xcode/Archives");
        const auto things = f.things();
        QCOMPARE(things.size(), 2U);
        QCOMPARE(things[0].ruleId, u"ollama.models"_s);
        QCOMPARE(things[0].place, f.home.path(".ollama/models"));
        QCOMPARE(things[0].link.target, f.onVolume("models"));
        QVERIFY(things[0].isThere());
        QCOMPARE(things[0].drive, u"volume"_s);
        QVERIFY(things[0].driveFree.value_or(0) > 0);
        QCOMPARE(things[1].title, u"Cold things"_s);
        QVERIFY(!things[1].isThere());
        QCOMPARE(things[1].drive, u"Archive"_s);
        QCOMPARE(things[1].driveFree, std::nullopt);
    }

    void linksAreToldByTheirOwnWordsBeforeTheirDrivesAnswer()
    {
        MovedFixture f;
        f.home.link("cold", "volume/./models");
        const auto links = Offload::links(f.services(), { .homeDirectory = f.home.text(), .host = &f.host });
        QCOMPARE(links.size(), 2U);
        for (const auto &link : links) {
            QVERIFY(!link.isAnswered);
            QVERIFY(!link.isThere());
            QCOMPARE(link.link.target, f.onVolume("models"));
            QCOMPARE(link.drive, u"volume"_s);
            QCOMPARE(link.driveFree, std::nullopt);
            const auto answered = Offload::answered(f.services(), link);
            QVERIFY(answered && answered->isAnswered && answered->isThere());
        }
        std::filesystem::remove(f.home.path("cold"));
        QVERIFY(!Offload::answered(f.services(), links.at(1)));
    }

    void theWayBackLeavesAWholeFolderInThePlaceOfTheLink()
    {
        MovedFixture f;
        f.home.file(".ollama/models.incomplete");
        const auto returned = f.bringBack(f.things().at(0));
        QVERIFY2(returned, qPrintable(returned ? QString() : returned.error().description()));
        QCOMPARE(returned->leftBehind, std::nullopt);
        QVERIFY(!std::filesystem::is_symlink(f.home.path(".ollama/models")));
        QCOMPARE(f.content(f.home.path(".ollama/models/large")), std::string(5 * block, 'l'));
        QCOMPARE(f.content(f.home.path(".ollama/models/\xFF")), std::string("odd"));
        const std::vector<std::string> beside{ "models", "models.incomplete" };
        QCOMPARE(f.names(f.home.path(".ollama")), beside);
        QVERIFY(!f.isThere(f.onVolume("models")));
        const auto trash = ".Trash-" + std::to_string(f.places.user) + "/files/models/large";
        QCOMPARE(f.content(f.onVolume(trash)), std::string(5 * block, 'l'));
    }

    void whatTheDrivesTrashRefusesIsTold()
    {
        MovedFixture f;
        f.hookedTrash.problem = u"There is no Trash for it."_s;
        const auto returned = f.bringBack(f.things().at(0));
        QVERIFY(returned);
        QCOMPARE(returned->leftBehind, u"There is no Trash for it."_s);
        QVERIFY(!std::filesystem::is_symlink(f.home.path(".ollama/models")));
        QVERIFY(f.isThere(f.onVolume("models/large")));
    }

    void anyFailureLeavesTheLinkAsItWas_data()
    {
        using Change = std::function<void(MovedFixture &)>;
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, Change change, const QString &text) {
            QTest::newRow(name) << std::move(change) << text;
        };
        row(
            "no exchange in one step",
            [](MovedFixture &f) {
                f.calls.before = [](std::string_view call, const char *name) {
                    return call == "renameat2" && std::string_view(name) == "models.incomplete" ? EINVAL : 0;
                };
            },
            u"Could not put it in the place of its link: The file system can't exchange the two in one step."_s);
        row(
            "no folder can be made",
            [](MovedFixture &f) {
                f.calls.before
                    = [](std::string_view call, const char *) { return call == "mkdirat" ? EACCES : 0; };
            },
            u"Copy failed: You do not have permission."_s);
        row(
            "a drive in it",
            [](MovedFixture &f) {
                f.home.folder("volume/models/inner");
                if (::mount("none", f.onVolume("models/inner").c_str(), "tmpfs", 0, nullptr) != 0)
                    qFatal("no mount");
            },
            u"A drive is mounted in %1."_s);
    }

    void anyFailureLeavesTheLinkAsItWas()
    {
        using Change = std::function<void(MovedFixture &)>;
        QFETCH(Change, change);
        QFETCH(QString, text);
        MovedFixture f;
        const auto thing = f.things().at(0);
        change(f);
        QCOMPARE(f.failure(thing), text.contains(u'%') ? text.arg(f.home.text("volume/models")) : text);
        f.calls.before = {};
        QVERIFY(f.isAsBefore());
        QVERIFY(f.isThere(f.onVolume("models/large")));
        ::umount2(f.onVolume("models/inner").c_str(), MNT_DETACH);
    }

    void whoeverGaveItUpHasTheLinkAsItWas()
    {
        MovedFixture f;
        const auto result = Offload::bringBack(f.services(),
            { .thing = f.things().at(0),
                .mayFinish = [&f] { return !f.isThere(f.home.path(".ollama/models.incomplete/large")); } });
        QVERIFY(!result);
        QCOMPARE(result.error().kind, OffloadError::Kind::stopped);
        QVERIFY(f.isAsBefore());
        QVERIFY(f.isThere(f.onVolume("models/large")));
    }

    void whatStandsInItsPlaceIsOnTheDiskBeforeTheDriveIsTouched()
    {
        MovedFixture f;
        bool wasWritten = false;
        f.hookedTrash.beforeMove = [&](const std::string &) {
            wasWritten = !std::filesystem::is_symlink(f.home.path(".ollama/models"))
                && f.hookedTrash.flushed == std::vector{ f.home.path(".ollama") };
        };
        QVERIFY(f.bringBack(f.things().at(0)));
        QVERIFY(wasWritten);
    }

    void aStopLeavesTheLinkAsItWas()
    {
        MovedFixture f;
        std::stop_source stop;
        stop.request_stop();
        QCOMPARE(f.failure(f.things().at(0), stop.get_token()), u"Stopped. Nothing was moved."_s);
        QVERIFY(f.isAsBefore());
    }

    void aLinkThatWasMadeAnewIsNotTaken()
    {
        MovedFixture f;
        const auto thing = f.things().at(0);
        std::filesystem::remove(f.home.path(".ollama/models"));
        QVERIFY(f.failure(thing).endsWith(u"is not the link any more that it was."_s));
        f.home.link(".ollama/models", f.onVolume("others"));
        QVERIFY(f.failure(thing).endsWith(u"is not the link any more that it was."_s));
        QVERIFY(f.isThere(f.onVolume("models/large")));
    }

    void whatDoesNotFitStays()
    {
        // The home is the small volume here, and the models lie outside.
        TwoVolumes f("size=64k,mode=755");
        f.home.fileWith("outside/models/large", std::string(100 * block, 'l'));
        f.home.folder("volume/.ollama");
        f.home.link("volume/.ollama/models", f.home.path("outside/models"));
        const auto things = answeredBelow(f.services(), { .homeDirectory = f.home.text("volume") });
        QCOMPARE(things.size(), 1U);
        const auto result = Offload::bringBack(f.services(), { .thing = things.at(0) });
        QVERIFY(!result);
        QCOMPARE(result.error().kind, OffloadError::Kind::notEnoughRoom);
        QCOMPARE(result.error().needed, 100 * block);
        QVERIFY(std::filesystem::is_symlink(f.onVolume(".ollama/models")));
    }

    void aDriveThatIsAwayIsNamed()
    {
        MovedFixture f;
        f.home.link("cold", "/media/someone/Archive/cold");
        QCOMPARE(f.failure(f.things().at(1)), u"Archive is not connected."_s);
    }
};

QUILLBROOK_SUITE(TestMovedThings, QCoreApplication, [] {
    if (const auto why = enter(); !why.isEmpty())
        qFatal("%s", qPrintable(why));
})
#include "tst_MovedThings.moc"
