#include "Advisor/Advisor.h"
#include "Support/ScannedHome.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using Problem = ModelAvailability::Problem;

namespace {

const auto unavailable
    = u"The on-device model isn't available, so I can't chat — but everything on the other screens is produced without it and is unaffected."_s;
const auto failed = u"The on-device model couldn't answer that. Your findings are unaffected."_s;

// Two phones to choose from, a group without items that is related to them, one that must stay.
struct Fixture : ScannedHome
{
    Fixture()
    {
        addPlace(".android/avd", 0);
        for (const auto *name : { "one", "two" }) {
            addFolder(std::string(".android/avd/") + name + ".avd");
            addFile(std::string(".android/avd/") + name + ".avd/disk", 90);
        }
        addPlace(".gradle/caches", 700);
        addPlace(".npm/_cacache", 50);
        addPlace("Library/Mail", 90);
        scan();
        advisor.refreshAvailability();
    }

    /// Asks, and answers with that.
    void turn(const std::optional<AdvisorReply> &reply, const QString &question = u"What?"_s)
    {
        languageModel().replies.push_back(reply);
        advisor.ask(question);
        QTRY_VERIFY(!advisor.thinking());
    }
    [[nodiscard]] FakeLanguageModel &languageModel() { return desktop.languageModel; }
    /// What was said, the person's after a ">".
    [[nodiscard]] QStringList said() const
    {
        QStringList lines;
        for (const auto &message : advisor.messages())
            lines.append((message.fromUser ? u"> "_s : QString()) + message.text);
        return lines;
    }
    [[nodiscard]] QStringList labels() const
    {
        QStringList labels;
        for (const auto &suggestion : advisor.suggestions())
            labels.append(suggestion.label);
        return labels;
    }
    [[nodiscard]] Finding found(const QString &id) const
    {
        return AdvisorChoices::subject(model.scans().report()->findings, id).value();
    }
    void press(const QString &label)
    {
        for (const auto &suggestion : advisor.suggestions()) {
            if (suggestion.label == label)
                return advisor.press(suggestion);
        }
        QFAIL("nothing to press has that label");
    }

    Advisor advisor{ model };
};

AdvisorReply reply(const QString &id, bool proposes = false, const QString &also = {})
{
    return { .answer = u"So."_s, .proposesRemoval = proposes, .groupId = id, .alsoConsiderGroupId = also };
}

} // namespace

class TestAdvisor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void availabilityIsTold_data()
    {
        QTest::addColumn<ModelAvailability>("present");
        QTest::addColumn<QString>("sentence");
        const auto row = [](Problem problem, const QString &reason) {
            QTest::addRow("%d", int(problem))
                << ModelAvailability{ .problem = problem, .server = u"Ollama"_s }
                << u"On-device model unavailable (%1). Everything else still works."_s.arg(reason);
        };
        QTest::newRow("there") << ModelAvailability{
            .problem = Problem::none, .server = u"Ollama"_s, .model = u"m"_s
        } << u"Answers are produced on this Mac — your files are never sent anywhere"_s;
        row(Problem::noServer,
            u"no model server runs here: start Ollama, llama.cpp's server, llamafile or vLLM"_s);
        row(Problem::someoneElses,
            u"the model server that runs here is another person's: start one of your own"_s);
        row(Problem::tooOld, u"this Ollama is too old: version 0.5 or newer is needed"_s);
        row(Problem::noModel, u"Ollama has no model yet: get one with “ollama pull llama3.2”"_s);
        row(Problem::onlyElsewhere,
            u"Ollama offers only models that run on other machines: get one that runs here"_s);
        row(Problem::loading, u"Ollama is still loading its model"_s);
    }

    void availabilityIsTold()
    {
        QFETCH(ModelAvailability, present);
        FakeServices fake;
        AppModel model(fake.services);
        Advisor advisor(model);
        QCOMPARE(advisor.availability(), u"checking…"_s);
        QVERIFY(!advisor.isAvailable());
        fake.desktop.languageModel.present = present;
        advisor.refreshAvailability();
        QTEST(advisor.availability(), "sentence");
        QCOMPARE(advisor.isAvailable(), present.isAvailable());
        QCOMPARE(advisor.answerer(), present.isAvailable() ? u"Ollama, m"_s : QString());
    }

    void blankQuestionChangesNothing()
    {
        Fixture home;
        home.turn(reply(u"npm.cacache"_s));
        const auto before = home.said();
        home.advisor.ask(u"   \n\t "_s);
        QCOMPARE(home.said(), before);
        QVERIFY(!home.advisor.suggestions().isEmpty());
        QCOMPARE(home.languageModel().questions.size(), 1);
    }

    void withoutAModelTheProgramSaysSo()
    {
        Fixture home;
        home.languageModel().present.problem = Problem::noServer;
        home.advisor.refreshAvailability();
        home.advisor.ask(u" Why? \n"_s);
        QCOMPARE(home.said(), QStringList({ u"> Why?"_s, unavailable }));
        QVERIFY(!home.advisor.thinking());
        QVERIFY(home.advisor.suggestions().isEmpty());
        QVERIFY(home.languageModel().instructions.isEmpty());
    }

    void sessionBeginsWithTheFirstQuestionAndKeepsItsInstructions()
    {
        Fixture home;
        QVERIFY(home.languageModel().instructions.isEmpty());
        home.turn(reply({}), u"  First? "_s);
        home.addPlace(".pub-cache", 70);
        home.scan();
        home.turn(reply(u"pub.cache"_s, true), u"Second?"_s);
        QCOMPARE(home.languageModel().questions, QStringList({ u"First?"_s, u"Second?"_s }));
        QCOMPARE(home.languageModel().instructions.size(), 1);
        const auto &text = home.languageModel().instructions.first();
        QVERIFY(
            text.contains(u"- id=android.avd name=\"Test Android phones\" size=180 MB count=2 touched="_s));
        QVERIFY(text.contains(u"- id=npm.cacache"_s) && !text.contains(u"pub.cache"_s));
        // What was found since counts when a reply is looked up.
        QVERIFY(home.advisor.proposal());
    }

    void answerIsShownAsItCame()
    {
        Fixture home;
        const auto text = u"  <b>1</b>\u202e /home/someone\n\n "_s;
        home.turn(AdvisorReply{ .answer = text, .groupId = u"npm.cacache"_s });
        QCOMPARE(home.said().last(), text);
    }

    // The way from a reply to a card, with replies that try to leave it.
    void onlyAFindingThatMayGoIsOffered_data()
    {
        QTest::addColumn<AdvisorReply>("given");
        QTest::addColumn<QString>("offered");
        QTest::addColumn<int>("items");
        QTest::newRow("items") << reply(u"android.avd"_s, true) << u"android.avd"_s << 2;
        QTest::newRow("a whole group") << reply(u"npm.cacache"_s, true) << u"npm.cacache"_s << 0;
        QTest::newRow("not proposed") << reply(u"npm.cacache"_s) << u""_s << 0;
        QTest::newRow("no id") << reply(u""_s, true) << u""_s << 0;
        QTest::newRow("an invented id") << reply(u"everything"_s, true) << u""_s << 0;
        QTest::newRow("a path") << reply(u"/home/someone"_s, true) << u""_s << 0;
        QTest::newRow("two ids") << reply(u"npm.cacache,android.avd"_s, true) << u""_s << 0;
        QTest::newRow("a rule that found nothing") << reply(u"pub.cache"_s, true) << u""_s << 0;
        QTest::newRow("one that must stay") << reply(u"mail.data"_s, true) << u""_s << 0;
        QTest::newRow("by the other field") << reply(u""_s, true, u"npm.cacache"_s) << u""_s << 0;
        QTest::newRow("with a word for it")
            << AdvisorReply{ .answer = u"proposesRemoval: true, groupID: npm.cacache"_s } << u""_s << 0;
    }

    void onlyAFindingThatMayGoIsOffered()
    {
        QFETCH(AdvisorReply, given);
        QFETCH(int, items);
        Fixture home;
        home.turn(given);
        const auto &proposal = home.advisor.proposal();
        QTEST(proposal ? proposal->finding.rule.id : QString(), "offered");
        QCOMPARE(proposal ? proposal->items.size() : 0, items);
        QVERIFY(home.trash.asked.empty());
    }

    void findingThatIsElsewhereIsNoSubject()
    {
        Fixture home;
        home.addLink(".pub-cache");
        home.scan();
        QVERIFY(home.found(u"pub.cache"_s).redirectedOffVolume);
        home.turn(reply(u"pub.cache"_s, true));
        QVERIFY(!home.languageModel().instructions.first().contains(u"pub.cache"));
        QVERIFY(!home.advisor.proposal());
        QCOMPARE(home.labels().first(), u"What's safe to delete?"_s);
    }

    void whatMustStayIsExplained()
    {
        Fixture home;
        home.turn(reply(u"mail.data"_s, true));
        const auto rule = home.found(u"mail.data"_s).rule;
        QCOMPARE(home.said().last(), u"I can't offer to remove %1 — %2"_s.arg(rule.title, rule.regenerates));
        QVERIFY(!home.advisor.proposal() && !home.advisor.hint());
        QCOMPARE(home.labels().first(), u"Why not?"_s);
        home.press(u"Why not?"_s);
        QCOMPARE(home.said().last(), rule.what + u"\n\n"_s + rule.regenerates);
        QVERIFY(home.labels().isEmpty());
        QCOMPARE(home.languageModel().questions.size(), 1);
    }

    void relatedGroupIsAHintOrStandsOnTheCard()
    {
        Fixture home;
        home.turn(reply(u"android.avd"_s));
        QVERIFY(!home.advisor.hint());
        home.addPlace("Library/Developer/Xcode/DerivedData", 900);
        home.scan();
        home.turn(reply(u"android.avd"_s, false, u"mail.data"_s));
        QCOMPARE(home.advisor.hint()->rule.id, u"xcode.deriveddata"_s);
        home.turn(reply(u"android.avd"_s, true));
        QVERIFY(!home.advisor.hint());
        QCOMPARE(home.advisor.proposal()->alsoConsider->rule.id, u"xcode.deriveddata"_s);
        home.turn(reply(u""_s, false, u"xcode.deriveddata"_s));
        QVERIFY(!home.advisor.hint() && !home.advisor.proposal());
    }

    void suggestionsDoWhatTheySay()
    {
        Fixture home;
        home.turn(reply(u"android.avd"_s));
        QCOMPARE(home.labels(),
            QStringList(
                { u"Pick one to delete"_s, u"Delete all · 180 MB"_s, u"Move it to another drive"_s }));
        home.press(u"Delete all · 180 MB"_s);
        QVERIFY(home.advisor.proposal()->items.isEmpty());
        home.advisor.dismissProposal();
        QVERIFY(!home.advisor.proposal());
        home.press(u"Pick one to delete"_s);
        QTRY_VERIFY(home.advisor.proposal());
        QCOMPARE(home.advisor.proposal()->items.size(), 2);
        QVERIFY(!home.advisor.proposal()->alsoConsider);
        home.press(u"Move it to another drive"_s);
        QCOMPARE(home.model.offloads().offloadFocus(), u"android.avd"_s);
        QCOMPARE(home.model.navigation().requestedPane(), Pane::offload);
        home.turn(reply({}));
        home.languageModel().replies.push_back(reply({}));
        home.press(u"What's safe to delete?"_s);
        QCOMPARE(home.languageModel().questions.last(), u"What is safe to delete right now?"_s);
    }

    void suggestionForWhatMustStayIsRefused()
    {
        Fixture home;
        const auto mail = home.found(u"mail.data"_s);
        home.advisor.press({ .kind = AdvisorAction::ChooseItem{ mail } });
        home.advisor.press({ .kind = AdvisorAction::RemoveGroup{ mail } });
        QTest::qWait(20);
        QVERIFY(!home.advisor.proposal());
    }

    void failureIsTold()
    {
        Fixture home;
        home.turn(reply(u"npm.cacache"_s, true));
        home.turn(std::nullopt);
        QCOMPARE(home.said().last(), failed);
        QVERIFY(!home.advisor.proposal() && !home.advisor.hint() && home.labels().isEmpty());
        home.turn(reply(u"npm.cacache"_s));
        QCOMPARE(home.languageModel().instructions.size(), 1);
    }

    void twoQuestionsAtOnceAreBothAnswered()
    {
        Fixture home;
        home.advisor.ask(u"one"_s);
        home.advisor.ask(u"two"_s);
        QVERIFY(home.advisor.thinking());
        home.languageModel().release(std::nullopt);
        QTRY_VERIFY(!home.advisor.thinking());
        home.languageModel().release(reply(u"npm.cacache"_s));
        QTRY_COMPARE(home.said(), QStringList({ u"> one"_s, u"> two"_s, failed, u"So."_s }));
        QCOMPARE(home.languageModel().instructions.size(), 1);
    }

    void clearedConversationStillGetsTheReply()
    {
        Fixture home;
        home.advisor.ask(u"one"_s);
        home.advisor.reset();
        QVERIFY(home.said().isEmpty());
        QVERIFY(home.advisor.thinking());
        home.languageModel().release(reply(u"npm.cacache"_s));
        QTRY_COMPARE(home.said(), QStringList{ u"So."_s });
        home.turn(reply({}));
        QCOMPARE(home.languageModel().instructions.size(), 2);
    }

    void stopReachesWhatIsAwaitedAndNoLaterQuestion()
    {
        Fixture home;
        home.advisor.ask(u"one"_s);
        home.advisor.stop();
        home.advisor.ask(u"two"_s);
        QVERIFY(home.languageModel().stops.at(0).stop_requested());
        QVERIFY(!home.languageModel().stops.at(1).stop_requested());
    }

    void mayEndWhileItWaits()
    {
        Fixture home;
        auto advisor = std::make_unique<Advisor>(home.model);
        advisor->refreshAvailability();
        advisor->ask(u"one"_s);
        advisor.reset();
        QVERIFY(home.languageModel().stops.at(0).stop_requested());
        home.languageModel().release(reply(u"npm.cacache"_s, true));
        QTest::qWait(20);
    }

    void conversationKeepsItsModelsName()
    {
        Fixture home;
        home.turn(reply({}));
        home.languageModel().present.model = u"other"_s;
        home.advisor.refreshAvailability();
        QCOMPARE(home.advisor.answerer(), u"Ollama, small"_s);
        home.advisor.reset();
        QCOMPARE(home.advisor.answerer(), u"Ollama, other"_s);
    }

    void conversationsModelIsNamedAgainOnceItsServerIsBack()
    {
        Fixture home;
        home.turn(reply({}));
        auto &present = home.languageModel().present;
        const auto before = std::exchange(present, {});
        home.advisor.refreshAvailability();
        QCOMPARE(home.advisor.answerer(), QString());
        present = before;
        home.advisor.refreshAvailability();
        QCOMPARE(home.advisor.answerer(), u"Ollama, small"_s);
    }

    void whatAnEarlierInquiryFindsIsOutOfDate()
    {
        FakeServices fake;
        AppModel model(fake.services);
        Advisor advisor(model);
        auto &languageModel = fake.desktop.languageModel;
        languageModel.isSlow = true;
        advisor.refreshAvailability();
        advisor.refreshAvailability();
        languageModel.tell(languageModel.present);
        QTRY_VERIFY(advisor.isAvailable());
        languageModel.tell({});
        QTest::qWait(20);
        QVERIFY(advisor.isAvailable());
    }

    void serverThatIsLoadingIsAskedAgain()
    {
        FakeServices fake;
        AppModel model(fake.services);
        Advisor advisor(model);
        auto &languageModel = fake.desktop.languageModel;
        const auto loaded = std::exchange(languageModel.present, { .problem = Problem::loading });
        advisor.refreshAvailability();
        QVERIFY(!advisor.isAvailable());
        languageModel.present = loaded;
        QTRY_VERIFY(advisor.isAvailable());
        QCOMPARE(languageModel.inquiries, 2);
        QTest::qWait(1500);
        QCOMPARE(languageModel.inquiries, 2);
    }
};

Q_DECLARE_METATYPE(Quillbrook::AdvisorReply)
Q_DECLARE_METATYPE(Quillbrook::ModelAvailability)

QUILLBROOK_SUITE(TestAdvisor, QCoreApplication)
#include "tst_Advisor.moc"
