#include "Platform/Linux/Photos/TrashEmptying.h"
#include "Support/FakeProcessRunner.h"
#include "Support/MemoryFiles.h"
#include "Support/Suite.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

using Days = std::optional<int>;

} // namespace

class TestTrashEmptying : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gnomeSaysWhetherAndWhen_data()
    {
        QTest::addColumn<QByteArray>("removes");
        QTest::addColumn<QByteArray>("age");
        QTest::addColumn<Days>("days");
        QTest::newRow("never") << QByteArray("false\n") << QByteArray("uint32 30\n") << Days();
        QTest::newRow("after 30 days") << QByteArray("true\n") << QByteArray("uint32 30\n") << Days(30);
        QTest::newRow("no such setting") << QByteArray() << QByteArray() << Days();
        QTest::newRow("no number") << QByteArray("true\n") << QByteArray("what\n") << Days();
    }

    void gnomeSaysWhetherAndWhen()
    {
        QFETCH(QByteArray, removes);
        QFETCH(QByteArray, age);
        FakeProcessRunner processes;
        processes.answer = [&](const ProcessRunner::Command &command) {
            const auto &output = command.arguments.last() == u"old-files-age"_s ? age : removes;
            return ProcessRunner::Result{
                .output = output, .exited = true, .exitCode = output.isEmpty() ? 1 : 0
            };
        };
        // Any program that is there: nothing is run.
        const QTemporaryDir folder;
        QFile program(folder.filePath(u"gsettings"_s));
        QVERIFY(program.open(QIODevice::WriteOnly));
        QVERIFY(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        const DesktopSession session{ .desktops = { u"GNOME"_s }, .programFolders = { folder.path() } };
        QTEST(TrashEmptying::days(session, processes, MemoryFiles()), "days");
        const DesktopSession without{ .desktops = { u"GNOME"_s } };
        QCOMPARE(TrashEmptying::days(without, processes, MemoryFiles()), Days());
    }

    void plasmaSaysItInAFile_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<Days>("days");
        QTest::newRow("nothing") << QByteArray() << Days();
        QTest::newRow("never") << QByteArray("[/home/a/Trash]\nDays=3\nUseTimeLimit=false\n") << Days();
        QTest::newRow("by size alone") << QByteArray("[/home/a/Trash]\nUseSizeLimit=true\n") << Days();
        QTest::newRow("after 3 days")
            << QByteArray("[/home/a/Trash]\nDays=3\nUseTimeLimit=true\n") << Days(3);
        QTest::newRow("no number") << QByteArray("[/home/a/Trash]\nUseTimeLimit=true\n") << Days(7);
        QTest::newRow("the shortest of two")
            << QByteArray("[a]\nDays=9\nUseTimeLimit=true\n[b]\nDays=5\nUseTimeLimit=true\n[c]\nDays=1\n")
            << Days(5);
        QTest::newRow("a number that is none") << QByteArray("[a]\nDays=x\nUseTimeLimit=true\n=\n") << Days();
    }

    void plasmaSaysItInAFile()
    {
        QFETCH(QByteArray, text);
        QTEST(TrashEmptying::daysInPlasma(text), "days");
    }
};

QUILLBROOK_SUITE(TestTrashEmptying, NoApplication)
#include "tst_TrashEmptying.moc"
