#include "Core/AppModel.h"
#include "Screens/Window/UpdateLineState.h"
#include "Support/FakeServices.h"
#include "Support/Suite.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestUpdateLineState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsToldWithoutAnUpdate()
    {
        FakeServices machine;
        AppModel model(machine.services);
        UpdateLineState line(model);
        QCOMPARE(line.text(), QString());
        line.open();
        QVERIFY(machine.desktop.links.opened.isEmpty());
    }

    void newerVersionIsToldAndOpened()
    {
        FakeServices machine;
        answer(machine, R"({"version": "1.2.3", "url": "https:\/\/updates.test/1.2.3"})");
        AppModel model(machine.services);
        UpdateLineState line(model);
        QSignalSpy changes(&line, &UpdateLineState::changed);
        model.updates().checkForUpdate();
        QTRY_COMPARE(line.text(), u"Quillbrook 1.2.3 is out"_s);
        QVERIFY(changes.count() > 0);
        QVERIFY(machine.desktop.links.opened.isEmpty());

        line.open();
        QCOMPARE(machine.desktop.links.opened, QList<QUrl>{ QUrl(u"https://updates.test/1.2.3"_s) });
    }

    void noticeGoesWithTheUpdate()
    {
        FakeServices machine;
        answer(machine, R"({"version": "1.2.3", "url": "https:\/\/updates.test/1.2.3"})");
        AppModel model(machine.services);
        UpdateLineState line(model);
        model.updates().checkForUpdate();
        QTRY_VERIFY(!line.text().isEmpty());

        machine.desktop.http.answer.reset();
        QSignalSpy changes(&line, &UpdateLineState::changed);
        model.updates().checkForUpdate();
        QTRY_COMPARE(line.text(), QString());
        QCOMPARE(changes.count(), 1);
    }

private:
    static void answer(FakeServices &machine, const QByteArray &body)
    {
        machine.desktop.http.answer = HttpAnswer{ .status = 200, .body = body };
    }
};

QUILLBROOK_SUITE(TestUpdateLineState, QCoreApplication)
#include "tst_UpdateLineState.moc"
