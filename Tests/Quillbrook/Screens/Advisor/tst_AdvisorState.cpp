#include "Advisor/Advisor.h"
#include "Screens/Advisor/AdvisorState.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Fixture : ScannedHome
{
    explicit Fixture(int phones = 2)
    {
        if (phones > 0)
            addPlace(".android/avd", 0);
        for (int i = 0; i < phones; ++i) {
            const auto name = ".android/avd/phone" + std::to_string(i) + ".avd";
            addFolder(name);
            addFile(name + "/disk", 90 - i);
            files.entries[path(name)] = { .dates = FileDates{ .lastModified = clock.moment.addDays(-1),
                                              .created = clock.moment.addDays(-70) } };
        }
        addPlace(".npm/_cacache", 50);
        scan();
        advisor.refreshAvailability();
    }

    void offer(const QString &id)
    {
        desktop.languageModel.replies.push_back(
            AdvisorReply{ .answer = u"So."_s, .proposesRemoval = true, .groupId = id });
        advisor.ask(u"remove it"_s);
        QTRY_VERIFY(!advisor.thinking());
    }
    [[nodiscard]] QVariant cell(int row, ProposalItemModel::Role role) const
    {
        return proposal.items()->data(proposal.items()->index(row), int(role));
    }

    Advisor advisor{ model };
    AdvisorState state{ model, advisor };
    ProposalState &proposal = *state.proposal();
};

using Role = ProposalItemModel::Role;

} // namespace

class TestAdvisorState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksOnAppearingWhetherAModelIsThere()
    {
        Fixture home;
        const auto before = home.desktop.languageModel.inquiries;
        home.state.setShown(true);
        QCOMPARE(home.desktop.languageModel.inquiries, before + 1);
        home.state.recheck();
        QCOMPARE(home.desktop.languageModel.inquiries, before + 2);
    }

    void buttonWaitsForAnAnswerAndReturnDoesNot()
    {
        Fixture home;
        home.state.setDraft(u"  "_s);
        QVERIFY(!home.state.canAsk());
        home.state.setDraft(u" one "_s);
        QVERIFY(home.state.canAsk());
        home.state.submit();
        QCOMPARE(home.state.draft(), QString());
        home.state.setDraft(u"two"_s);
        QVERIFY(!home.state.canAsk());
        home.state.submit();
        QCOMPARE(home.desktop.languageModel.questions, QStringList({ u"one"_s, u"two"_s }));
        home.state.submit();
        QCOMPARE(home.desktop.languageModel.questions.size(), 2);
    }

    void messagesAreRows()
    {
        Fixture home;
        const QAbstractItemModelTester tester(home.state.messages());
        QVERIFY(home.state.isEmpty());
        home.offer({});
        QCOMPARE(home.state.messages()->rowCount(), 2);
        QCOMPARE(
            home.state.messages()->data(home.state.messages()->index(0), int(MessageModel::Role::fromUser)),
            true);
        home.state.clear();
        QCOMPARE(home.state.messages()->rowCount(), 0);
        QVERIFY(home.state.isEmpty());
        home.state.askSuggested(0);
        QCOMPARE(home.advisor.messages().constFirst().text, home.state.questions().constFirst());
    }

    // What is told is told whole and once, and the person's own words are not.
    void answersAreAnnounced()
    {
        Fixture home;
        home.state.setShown(true);
        home.addPlace("Library/Mail", 90);
        home.scan();
        home.offer(u"mail.data"_s);
        QCOMPARE(home.state.announcement(), QString());
        QTRY_COMPARE(home.state.announcement(), u"So.\n"_s + home.advisor.messages().constLast().text);
        QVERIFY(home.advisor.messages().constLast().text.startsWith(u"I can't offer"));
        home.offer({});
        QCOMPARE(home.state.announcement(), QString());
        QTRY_COMPARE(home.state.announcement(), u"So."_s);
        home.state.clear();
        home.offer({});
        QTRY_COMPARE(home.state.announcement(), u"So."_s);
    }

    void answerThatComesWhileAnotherScreenIsShownIsAnnouncedLater()
    {
        Fixture home;
        home.state.setShown(true);
        home.state.setShown(false);
        home.offer({});
        QTest::qWait(100);
        QCOMPARE(home.state.announcement(), QString());
        home.state.setShown(true);
        QTRY_COMPARE(home.state.announcement(), u"So."_s);
        home.state.setShown(false);
        home.state.setShown(true);
        QTest::qWait(100);
        QCOMPARE(home.state.announcement(), QString());
    }

    void cardSaysWhatItOffers_data()
    {
        QTest::addColumn<int>("phones");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("several") << 2 << u"android.avd"_s
                                 << QStringList{ u"Which one?"_s, u"Test Android phones · 179 MB in total"_s,
                                        u""_s, u"frees 90.0 MB"_s };
        QTest::newRow("one") << 1 << u"android.avd"_s
                             << QStringList{ u"This one?"_s, u"Test Android phones · 90.0 MB in total"_s,
                                    u""_s, u"frees 90.0 MB"_s };
        QTest::newRow("all") << 0 << u"npm.cacache"_s
                             << QStringList{ u"Remove Downloaded code packages?"_s,
                                    u"Downloaded code packages · 50.0 MB in total"_s,
                                    u"Repopulated on the next install. Needs a network connection."_s,
                                    u""_s };
    }

    void cardSaysWhatItOffers()
    {
        QFETCH(int, phones);
        QFETCH(QString, id);
        QFETCH(QStringList, words);
        Fixture home(phones);
        QVERIFY(!home.proposal.present());
        home.offer(id);
        QVERIFY(home.proposal.present() && home.proposal.canMove());
        QCOMPARE(home.proposal.heading(), words.at(0));
        QCOMPARE(home.proposal.summary(), words.at(1));
        QCOMPARE(home.proposal.consequence(), words.at(2));
        QCOMPARE(home.proposal.frees(), words.at(3));
    }

    void itemIsChosenAndMoved()
    {
        Fixture home;
        home.offer(u"android.avd"_s);
        const QAbstractItemModelTester tester(home.proposal.items());
        QCOMPARE(home.cell(0, Role::name), u"phone0"_s);
        QCOMPARE(home.cell(0, Role::detail),
            u"Android virtual device · created 2 months ago · last used yesterday"_s);
        QCOMPARE(home.cell(0, Role::chosen), true);
        home.proposal.choose(1);
        home.proposal.choose(7);
        QCOMPARE(home.proposal.step(1, 1), 1);
        QCOMPARE(home.proposal.step(1, -1), 0);
        QCOMPARE(home.cell(0, Role::chosen), true);
        QCOMPARE(home.proposal.step(0, 1), 1);
        QCOMPARE(home.cell(0, Role::chosen), false);
        QCOMPARE(home.proposal.frees(), u"frees 89.0 MB"_s);
        const QSignalSpy asked(&home.proposal, &ProposalState::moveAsked);
        home.proposal.move();
        QVERIFY(home.trash.asked.empty());
        home.proposal.askToMove();
        QCOMPARE(asked.count(), 1);
        QCOMPARE(home.proposal.confirmTitle(), u"Move phone1 to the Trash?"_s);
        QCOMPARE(home.proposal.confirmMessage(),
            u"You can make new ones, but anything installed on them is gone.\n\nYou can put it back from the "
            u"Trash."_s);
        home.proposal.move();
        QVERIFY(!home.proposal.present());
        // Nothing of this home folder is on a disk, and so what was tried says so.
        QTRY_COMPARE(home.model.reclaims().reclaimLog().size(), 1);
        QVERIFY(home.model.reclaims().reclaimLog().first().startsWith(u"✗ phone1: "_s));
    }

    void wholeGroupIsNamedInTheQuestion()
    {
        Fixture home;
        home.offer(u"npm.cacache"_s);
        home.proposal.askToMove();
        QCOMPARE(home.proposal.confirmTitle(), u"Move Downloaded code packages to the Trash?"_s);
        home.proposal.move();
        QVERIFY(!home.proposal.present());
        QTRY_VERIFY(!home.model.reclaims().reclaimLog().isEmpty());
    }

    void withoutABackupTheQuestionSaysSo()
    {
        Fixture home;
        home.offer(u"npm.cacache"_s);
        home.proposal.askToMove();
        home.backups.backups = {};
        home.model.reclaims().refreshSafetyNet();
        QTRY_VERIFY(home.model.reclaims().safetyNet());
        QVERIFY(home.model.reclaims().safetyNet()->isUnprotected());
        QCOMPARE(home.proposal.confirmMessage(),
            u"Repopulated on the next install. Needs a network connection.\n\nYou can put it back from the "
            u"Trash. This Mac has no backup, so emptying the Trash is final."_s);
    }

    void nothingIsMovedOnceTheCardHasGone()
    {
        Fixture home;
        home.offer(u"npm.cacache"_s);
        home.proposal.askToMove();
        home.advisor.ask(u"something else"_s);
        QVERIFY(!home.proposal.present());
        home.proposal.move();
        home.proposal.askToMove();
        home.proposal.move();
        QVERIFY(home.model.reclaims().reclaimLog().isEmpty());
        QVERIFY(home.trash.asked.empty());
    }

    void itemsThatMustStayCanNotBeChosen()
    {
        ProposalItemModel items;
        const StorageItem kept{
            .id = u"a"_s, .name = u"A\nB"_s, .removable = false, .blockedReason = u"Why."_s
        };
        const StorageItem free{ .id = u"b"_s, .bytes = 5 };
        items.setItems({ kept, kept }, {});
        items.choose(0);
        QVERIFY(!items.chosen());
        QCOMPARE(items.data(items.index(0), int(Role::chosen)), false);
        QCOMPARE(items.data(items.index(0), int(Role::blocked)), u"Why."_s);
        QCOMPARE(items.data(items.index(0), int(Role::name)), u"A B"_s);
        items.setItems({ kept, free }, {});
        QCOMPARE(items.chosen()->id, u"b"_s);
        items.choose(0);
        QCOMPARE(items.chosen()->id, u"b"_s);
    }

    void cardWithoutAnythingThatMayGoCanOnlyBeTakenAway()
    {
        Fixture home;
        home.addPlace("Library/Developer/CoreSimulator/Devices", 0);
        home.addFolder("Library/Developer/CoreSimulator/Devices/4B8F-1");
        home.addFile("Library/Developer/CoreSimulator/Devices/4B8F-1/disk", 90);
        home.processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{ .output = "    iPhone (4B8F-1) (Booted) \n", .exited = true };
        };
        home.scan();
        home.offer(u"simulator.devices"_s);
        QCOMPARE(home.proposal.heading(), u"This one?"_s);
        QCOMPARE(home.cell(0, Role::blocked), u"Running right now — shut it down first."_s);
        home.proposal.choose(0);
        QVERIFY(!home.proposal.canMove());
        QCOMPARE(home.proposal.frees(), QString());
        const QSignalSpy asked(&home.proposal, &ProposalState::moveAsked);
        home.proposal.askToMove();
        home.proposal.move();
        QCOMPARE(asked.count(), 0);
        QVERIFY(home.proposal.present());
        home.proposal.dismiss();
        QVERIFY(!home.proposal.present());
    }

    // Names that are not UTF-8 may read the same, and so do their ids.
    void itemsThatReadTheSameAreToldApart()
    {
        ProposalItemModel items;
        const auto item = [](qint64 bytes) {
            return StorageItem{ .id = u"a/\ufffd"_s, .name = u"\ufffd"_s, .bytes = bytes };
        };
        items.setItems({ item(5), item(3) }, {});
        QCOMPARE(items.chosen()->bytes, 5);
        items.choose(1);
        QCOMPARE(items.chosen()->bytes, 3);
        QCOMPARE(items.data(items.index(0), int(Role::chosen)), false);
        QCOMPARE(items.data(items.index(1), int(Role::chosen)), true);
        items.setItems({ item(7) }, {});
        QCOMPARE(items.chosen()->bytes, 7);
        items.setItems({}, {});
        QVERIFY(!items.chosen());
    }

    void dismissedCardBringsTheSuggestionsBack()
    {
        Fixture home;
        home.offer(u"android.avd"_s);
        const auto before = home.state.suggestions();
        home.proposal.dismiss();
        QVERIFY(!home.proposal.present());
        QVERIFY(!before.isEmpty());
        QCOMPARE(home.state.suggestions(), before);
        home.state.press(1);
        QVERIFY(home.proposal.present());
        home.state.press(99);
        home.state.press(-1);
    }

    void relatedGroupIsAskedForInThePersonsWords()
    {
        Fixture home;
        home.addPlace("Library/Developer/Xcode/DerivedData", 900);
        home.scan();
        home.offer(u"android.avd"_s);
        QCOMPARE(
            home.proposal.alsoConsider(), u"Leftovers from building apps — 900 MB more you could free"_s);
        home.proposal.clearAlso();
        QCOMPARE(home.desktop.languageModel.questions.last(), u"remove the Leftovers from building apps"_s);
        QVERIFY(!home.proposal.present());
    }
};

QUILLBROOK_SUITE(TestAdvisorState, QCoreApplication)
#include "tst_AdvisorState.moc"
