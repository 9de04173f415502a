// What lies behind links, over made-up drives of which some do not answer.

#include "Catalogue/HostCatalogue.h"
#include "Core/MovedThingsFinder.h"
#include "Support/FakeKit.h"
#include "Support/Suite.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr auto root = "/home/someone";
constexpr auto archives = "/home/someone/Library/Developer/Xcode/Archives";
constexpr auto models = "/home/someone/.ollama/models";

// Two links, the second of them to a drive that answers when it is told to.
struct Fixture : FakeKit
{
    Fixture()
    {
        relocation.size = 7;
        addLink(archives, "/media/disk/Archives");
        addLink(models, "/media/dead/models");
        relocation.onFollow = [this](const std::string &place) {
            if (place != models)
                return;
            asked.release();
            answer.acquire();
        };
    }
    ~Fixture() { answer.release(100); }
    Fixture(const Fixture &) = delete;
    Fixture &operator=(const Fixture &) = delete;

    void addLink(const std::string &place, const std::string &target)
    {
        relocation.links[place] = { .text = target, .target = target, .leadsSomewhere = true };
    }
    void look() { finder.look(root, {}); }
    [[nodiscard]] QStringList told() const
    {
        QStringList told;
        for (const auto &thing : finder.things())
            told.append(QString::fromStdString(thing.place.substr(thing.place.rfind('/') + 1))
                + (thing.isAnswered ? u""_s : u" silent"_s)
                + (thing.bytes ? u" %1"_s.arg(*thing.bytes) : u""_s));
        return told;
    }

    QSemaphore asked;
    QSemaphore answer;
    MovedThingsFinder finder{ kitServices, 50ms };
};

} // namespace

class TestMovedThingsFinder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDriveThatDoesNotAnswerHidesNoOther()
    {
        Fixture f;
        f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 7"_s, u"models silent"_s }));
        QCOMPARE(f.finder.things().at(1).drive, u"Backup"_s);
        QVERIFY(!f.finder.things().at(1).isThere());
        // It is asked by one thread, however often somebody looks.
        f.relocation.size = 9;
        for (int i = 0; i < 5; ++i)
            f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 9"_s, u"models silent"_s }));
        QCOMPARE(f.asked.available(), 1);
        QVERIFY(!f.finder.endsWithin(QDeadlineTimer(20ms)));
    }

    void aDriveThatAnswersAgainIsAskedForWhatHasChangedMeanwhile()
    {
        Fixture f;
        f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 7"_s, u"models silent"_s }));
        QSignalSpy changed(&f.finder, &MovedThingsFinder::thingsChanged);
        f.relocation.size = 8;
        f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 8"_s, u"models silent"_s }));
        f.answer.release();
        QTRY_COMPARE(f.asked.available(), 2);
        QCOMPARE(f.told().constLast(), u"models silent"_s);
        f.answer.release();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 8"_s, u"models 8"_s }));
        QVERIFY(changed.count() > 0);
    }

    void aLinkThatIsGoneIsForgottenThoughItsDriveIsSilent()
    {
        Fixture f;
        f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 7"_s, u"models silent"_s }));
        f.relocation.links.erase(models);
        f.look();
        QTRY_COMPARE(f.told(), QStringList{ u"Archives 7"_s });
        f.answer.release();
        QVERIFY(f.finder.endsWithin(QDeadlineTimer(5s)));
        QCoreApplication::sendPostedEvents();
        QCOMPARE(f.told(), QStringList{ u"Archives 7"_s });
    }

    void whatLeadsToTheSameFileSystemIsNotTold()
    {
        Fixture f;
        f.answer.release(2);
        f.look();
        QTRY_COMPARE(f.told(), QStringList({ u"Archives 7"_s, u"models 7"_s }));
        f.drives.areOne = true;
        f.look();
        QTRY_COMPARE(f.told(), QStringList());
    }
};

QUILLBROOK_SUITE(TestMovedThingsFinder, QCoreApplication)
#include "tst_MovedThingsFinder.moc"
