#include "Screens/Window/AskBarState.h"
#include "Support/FakeServices.h"
#include "Support/WindowContent.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;

class AskBarStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blankDraftDoesNothing_data();
    void blankDraftDoesNothing();
    void submittingEmptiesTheDraftAndOpensTheConversation();
    void historyOpensTheConversationAndKeepsTheDraft();
};

void AskBarStateTest::blankDraftDoesNothing_data()
{
    QTest::addColumn<QString>("draft");
    QTest::newRow("empty") << "";
    QTest::newRow("spaces") << "   ";
    QTest::newRow("tabs, line feeds and a no-break space") << QStringLiteral("\t\n\u00a0 ");
}

void AskBarStateTest::blankDraftDoesNothing()
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

void AskBarStateTest::submittingEmptiesTheDraftAndOpensTheConversation()
{
    FakeServices machine;
    AppModel model(machine.services);
    WindowContent window(model);
    auto &content = window.content;
    AskBarState ask(content);
    QSignalSpy drafts(&ask, &AskBarState::draftChanged);
    ask.setDraft(QStringLiteral("  What fills the disk? "));
    QVERIFY(ask.submit());
    QCOMPARE(ask.draft(), QString());
    QCOMPARE(drafts.count(), 2);
    QCOMPARE(content.pane(), Pane::advisor);
}

void AskBarStateTest::historyOpensTheConversationAndKeepsTheDraft()
{
    FakeServices machine;
    AppModel model(machine.services);
    WindowContent window(model);
    auto &content = window.content;
    AskBarState ask(content);
    ask.setDraft(QStringLiteral("half a que"));
    ask.openConversation();
    QCOMPARE(content.pane(), Pane::advisor);
    QCOMPARE(ask.draft(), QStringLiteral("half a que"));
}

QTEST_GUILESS_MAIN(AskBarStateTest)
#include "tst_AskBarState.moc"
