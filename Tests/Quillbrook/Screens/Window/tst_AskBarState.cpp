#include "Screens/Window/AskBarState.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

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
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        AskBarState ask(content);
        ask.setDraft(draft);
        QVERIFY(!ask.submit());
        QCOMPARE(ask.draft(), draft);
        QCOMPARE(content.pane(), Pane::warden);
    }

    void submittingEmptiesTheDraftAndOpensTheConversation()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        AskBarState ask(content);
        QSignalSpy drafts(&ask, &AskBarState::draftChanged);
        ask.setDraft(u"  What fills the disk? "_s);
        QVERIFY(ask.submit());
        QCOMPARE(ask.draft(), QString());
        QCOMPARE(drafts.count(), 2);
        QCOMPARE(content.pane(), Pane::advisor);
    }

    void historyOpensTheConversationAndKeepsTheDraft()
    {
        FakeServices machine;
        AppModel model(machine.services);
        WindowContent window(model);
        auto &content = window.content;
        AskBarState ask(content);
        ask.setDraft(u"half a que"_s);
        ask.openConversation();
        QCOMPARE(content.pane(), Pane::advisor);
        QCOMPARE(ask.draft(), u"half a que"_s);
    }
};

QUILLBROOK_SUITE(TestAskBarState, QCoreApplication)
#include "tst_AskBarState.moc"
