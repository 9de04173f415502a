#include "Platform/Linux/Processes/OpenFileLimit.h"
#include "Support/Suite.h"

#include <QTest>

#include <algorithm>
#include <sys/resource.h>

using namespace Quillbrook;

class TestOpenFileLimit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limitIsRaisedToWhatIsGranted()
    {
        rlimit before = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
        auto tight = before;
        tight.rlim_cur = 256;
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &tight), 0);
        raiseOpenFileLimit();
        rlimit raised = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &raised), 0);
        QCOMPARE(raised.rlim_cur, std::min<rlim_t>(before.rlim_max, 524'288));
        QCOMPARE(raised.rlim_max, before.rlim_max);
        QVERIFY(raised.rlim_cur > 256);
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &before), 0);
    }
};

QUILLBROOK_SUITE(TestOpenFileLimit, QCoreApplication)
#include "tst_OpenFileLimit.moc"
