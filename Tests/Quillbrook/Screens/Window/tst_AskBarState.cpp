#include "Advisor/Advisor.h"
#include "Screens/Window/AskBarState.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

struct Fixture : FakeServices
{
    AppModel model{ services };
    WindowContent window{ model };
    Advisor advisor{ model };
    AskBarState ask{ model, advisor, window.content };
};

} // namespace

class TestAskBarState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blankDraftDoesNothing_data()
    {
        QTest::addColumn<QString>("draft");
        QTest::newRow("empty") << "";
        QTest::newRow("spaces") << "   ";
        QTest::newRow("tabs, line feeds and a no-break space") << u"\t\n\u00a0 "_s;
    }

    void blankDraftDoesNothing()
    {
        QFETCH(QString, draft);
        Fixture bar;
        bar.ask.setDraft(draft);
        QVERIFY(!bar.ask.submit());
        QCOMPARE(bar.ask.draft(), draft);
        QCOMPARE(bar.window.content.pane(), Pane::warden);
        QVERIFY(bar.advisor.messages().isEmpty());
    }

    void questionIsAskedInTheConversation()
    {
        Fixture bar;
        QSignalSpy drafts(&bar.ask, &AskBarState::draftChanged);
        QVERIFY(!bar.ask.canAsk() && !bar.ask.hasHistory());
        bar.ask.setDraft(u"  What fills the disk? "_s);
        QVERIFY(bar.ask.canAsk());
        QVERIFY(bar.ask.submit());
        QCOMPARE(bar.ask.draft(), QString());
        QCOMPARE(drafts.count(), 2);
        QCOMPARE(bar.window.content.pane(), Pane::advisor);
        QCOMPARE(bar.advisor.messages().constFirst().text, u"What fills the disk?"_s);
        QVERIFY(bar.ask.hasHistory());
    }

    void historyOpensTheConversationAndKeepsTheDraft()
    {
        Fixture bar;
        bar.ask.setDraft(u"half a que"_s);
        bar.ask.openConversation();
        QCOMPARE(bar.window.content.pane(), Pane::advisor);
        QCOMPARE(bar.ask.draft(), u"half a que"_s);
    }

    void questionsToTryStandThereUntilTheFirstIsAsked()
    {
        Fixture bar;
        QCOMPARE(bar.ask.prompt(), u"On-device model unavailable — every other screen still works"_s);
        QVERIFY(bar.ask.questions().isEmpty());
        bar.ask.focusIn();
        QCOMPARE(bar.ask.prompt(), u"Ask Quillbrook anything about this Mac"_s);
        QCOMPARE(bar.ask.questions(), QStringList{ u"What is using the most space?"_s });
        bar.ask.tryQuestion(0);
        QCOMPARE(bar.advisor.messages().constFirst().text, u"What is using the most space?"_s);
        QVERIFY(bar.ask.questions().isEmpty());
        bar.ask.tryQuestion(0);
        QCOMPARE(bar.advisor.messages().size(), 1);
    }
};

QUILLBROOK_SUITE(TestAskBarState, QCoreApplication)
#include "tst_AskBarState.moc"
