#include "Support/Suite.h"
#include "WhenAnswered.h"

#include <QPromise>
#include <QTest>

#include <memory>
#include <optional>

using namespace Quillbrook;

class TestWhenAnswered : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_promise = std::make_unique<QPromise<int>>();
        m_promise->start();
        m_context = std::make_unique<QObject>();
        m_taken.reset();
    }

    void answerThatIsThereIsTakenAtOnce()
    {
        give(7);
        wait();
        QCOMPARE(m_taken, std::optional(7));
    }

    void answerIsTakenWhenItComes()
    {
        wait();
        QCoreApplication::processEvents();
        QVERIFY(!m_taken.has_value());
        give(7);
        QTRY_COMPARE(m_taken, std::optional(7));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_context->children().isEmpty());
    }

    void nobodyIsToldWhoHasGone()
    {
        wait();
        m_context.reset();
        give(7);
        QCoreApplication::processEvents();
        QVERIFY(!m_taken.has_value());
    }

    void whatWasCalledOffIsNoAnswer_data()
    {
        QTest::addColumn<bool>("isBefore");
        QTest::newRow("before") << true;
        QTest::newRow("meanwhile") << false;
    }
    void whatWasCalledOffIsNoAnswer()
    {
        QFETCH(bool, isBefore);
        const auto future = m_promise->future();
        if (isBefore)
            m_promise.reset();
        whenAnswered(future, m_context.get(), [this](int answer) { m_taken = answer; });
        m_promise.reset();
        QTest::qWait(0);
        QCoreApplication::processEvents();
        QVERIFY(!m_taken.has_value());
    }

private:
    void wait()
    {
        whenAnswered(m_promise->future(), m_context.get(), [this](int answer) { m_taken = answer; });
    }
    void give(int answer)
    {
        m_promise->addResult(answer);
        m_promise->finish();
    }

    std::unique_ptr<QPromise<int>> m_promise;
    std::unique_ptr<QObject> m_context;
    std::optional<int> m_taken;
};

QUILLBROOK_SUITE(TestWhenAnswered, QCoreApplication)
#include "tst_WhenAnswered.moc"
