#include "Advisor/Advisor.h"
#include "Core/AppModel.h"
#include "Screens/PaneState.h"
#include "Screens/Window/PaneStates.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestPaneStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPaneWithAFileHasItsState()
    {
        FakeServices machine;
        AppModel model(machine.services);
        Advisor advisor(model);
        const PaneStates panes(model, advisor);
        for (const auto &row : paneTable) {
            auto *state = panes.state(row.pane);
            QCOMPARE(state != nullptr, *row.file != '\0');
            const auto handed = panes.properties(row.pane).value(QString::fromLatin1(row.state));
            QCOMPARE(handed.value<PaneState *>(), state);
        }
    }

    void onePaneIsShownAtATime()
    {
        FakeServices machine;
        AppModel model(machine.services);
        Advisor advisor(model);
        PaneStates panes(model, advisor);
        const auto shown = [&panes] {
            QList<Pane> shown;
            for (const auto &row : paneTable)
                if (const auto *state = panes.state(row.pane); state && state->shown())
                    shown.append(row.pane);
            return shown;
        };
        QCOMPARE(shown(), QList<Pane>());
        for (const auto pane : { Pane::warden, Pane::search, Pane::search }) {
            panes.show(pane);
            QCOMPARE(shown(), QList<Pane>{ pane });
        }
        panes.show(std::nullopt);
        QCOMPARE(shown(), QList<Pane>());
    }

    void keyboardIsOfferedToThePaneThatIsShown()
    {
        FakeServices machine;
        AppModel model(machine.services);
        Advisor advisor(model);
        PaneStates panes(model, advisor);
        QSignalSpy search(panes.state(Pane::search), &PaneState::keyboardOffered);
        QSignalSpy map(panes.state(Pane::map), &PaneState::keyboardOffered);
        panes.offerKeyboard();
        panes.show(Pane::search);
        panes.offerKeyboard();
        QCOMPARE(search.count(), 1);
        QCOMPARE(map.count(), 0);
    }
};

QUILLBROOK_SUITE(TestPaneStates, QCoreApplication)
#include "tst_PaneStates.moc"
