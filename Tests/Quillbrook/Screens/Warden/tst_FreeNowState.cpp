#include "Screens/Warden/FreeNowState.h"
#include "Support/HomeOnDisk.h"
#include "Support/Suite.h"

#include <QSignalSpy>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Fixture : HomeOnDisk
{
    Fixture()
    {
        tree.file("home/.gradle/daemon/log", 4096);
        scan();
        model->reclaims().reclaim({ finding(".gradle/daemon") }, false);
        settled();
    }

    FreeNowState offer{ *model };
};

} // namespace

class TestFreeNowState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksNothingAtFirst()
    {
        const HomeOnDisk home;
        FreeNowState offer(*home.model);
        QVERIFY(!offer.asked());
        QCOMPARE(offer.title(), QString());
        offer.free();
        QCOMPARE(home.model->scans().phase().kind, Phase::Kind::idle);
    }

    void asksWhatToDoWithWhatHasJustGone()
    {
        const Fixture fixture;
        QVERIFY(fixture.offer.asked());
        QCOMPARE(fixture.offer.title(), u"Moved 4.0 KB to the Trash. Free the space now?"_s);
    }

    void freeingRemovesIt()
    {
        Fixture fixture;
        QSignalSpy changes(&fixture.offer, &FreeNowState::changed);
        fixture.offer.free();
        QVERIFY(!fixture.offer.asked());
        QVERIFY(changes.count() >= 1);
        fixture.settled();
        QVERIFY(!fixture.isTrashed("log"));
    }

    void whatLayThereBeforeIsToldAndCanBeKeptBack()
    {
        Fixture fixture;
        auto &earlier = *fixture.offer.earlier();
        QCOMPARE(earlier.text(), QString());
        fixture.offer.keep();
        for (const auto *name : { "one", "two" })
            fixture.tree.file(std::string("home/.npm/_cacache/") + name, 8192);
        fixture.scan();
        fixture.model->reclaims().reclaim({ fixture.finding(".npm/_cacache") }, false);
        fixture.settled();
        QCOMPARE(fixture.offer.title(), u"Moved 16.0 KB to the Trash. Free the space now?"_s);
        QCOMPARE(earlier.text(), u"1 item (4.0 KB) that Quillbrook moved there before goes too."_s);
        // None is made before it is asked for.
        QCOMPARE(earlier.rows()->rowCount(), 0);
        earlier.toggleRows();
        QCOMPARE(earlier.rows()->rowCount(), 1);
        earlier.toggle(0);
        QVERIFY(!earlier.rows()->at(0)->ticked);
        QCOMPARE(earlier.text(), u"What Quillbrook moved there before stays."_s);
        fixture.offer.free();
        fixture.settled();
        QVERIFY(fixture.isTrashed("log"));
        QVERIFY(!fixture.isTrashed("one"));
    }

    // By whichever list it was unticked: that of the screen, or that of an earlier question.
    void whatIsKeptOnceIsKeptByTheNextQuestionToo()
    {
        Fixture fixture;
        fixture.offer.keep();
        fixture.model->books().toggleKept(fixture.model->books().held().front().item.id);
        fixture.tree.file("home/.npm/_cacache/one", 8192);
        fixture.scan();
        fixture.model->reclaims().reclaim({ fixture.finding(".npm/_cacache") }, false);
        fixture.settled();
        fixture.offer.earlier()->toggleRows();
        QVERIFY(!fixture.offer.earlier()->rows()->at(0)->ticked);
        fixture.offer.free();
        fixture.settled();
        QVERIFY(fixture.isTrashed("log"));
        QVERIFY(!fixture.isTrashed("one"));
    }

    void keepingLeavesItInTheTrash()
    {
        Fixture fixture;
        fixture.offer.keep();
        QVERIFY(!fixture.offer.asked());
        QVERIFY(fixture.isTrashed("log"));
        QCOMPARE(fixture.model->books().ledger().pendingCount(), qsizetype(1));
    }
};

QUILLBROOK_SUITE(TestFreeNowState, QCoreApplication)
#include "tst_FreeNowState.moc"
