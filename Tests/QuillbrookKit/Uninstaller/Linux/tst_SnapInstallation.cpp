// Which image a snap is, and what it says of itself.

#include "Support/DesktopMachine.h"
#include "Support/Suite.h"
#include "Uninstaller/Linux/SnapInstallation.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestSnapInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theImageInUseIsTaken_data()
    {
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("file");
        QTest::newRow("in use") << u"9"_s << u"hello_9.snap"_s;
        QTest::newRow("in use, from a file") << u"x1"_s << u"hello_x1.snap"_s;
        QTest::newRow("not told: the newest") << QString() << u"hello_10.snap"_s;
        QTest::newRow("gone: the newest") << u"12"_s << u"hello_10.snap"_s;
    }
    void theImageInUseIsTaken()
    {
        QFETCH(QString, current);
        QFETCH(QString, file);
        const DesktopMachine machine;
        for (const auto *name : { "hello_9.snap", "hello_10.snap", "hello_x1.snap", "hello_more_99.snap",
                 "hello_.snap", "hello_11.snap.partial", "hello_11a.snap", "hellos_50.snap" })
            machine.tree.file(std::string("var/lib/snapd/snaps/") + name);
        if (!current.isEmpty())
            machine.tree.link("snap/hello/current", current.toStdString());
        QCOMPARE(SnapInstallation::image(machine.places(), "hello"),
            machine.path("var/lib/snapd/snaps/" + file.toStdString()));
        QCOMPARE(SnapInstallation::image(machine.places(), "none"), std::string());
    }

    void versionIsTheSnapsOwn_data()
    {
        QTest::addColumn<QByteArray>("note");
        QTest::addColumn<QString>("version");
        QTest::newRow("quoted") << QByteArray("name: hello\nversion: '2.10'\n") << u"2.10"_s;
        QTest::newRow("plain") << QByteArray("version: 3-beta\n") << u"3-beta"_s;
        QTest::newRow("of a part") << QByteArray("parts:\n  version: 1\n") << QString();
        QTest::newRow("nothing") << QByteArray() << QString();
    }
    void versionIsTheSnapsOwn()
    {
        QFETCH(QByteArray, note);
        const DesktopMachine machine;
        machine.tree.fileWith("snap/hello/current/meta/snap.yaml", note.toStdString());
        QTEST(SnapInstallation::version(machine.reading, machine.places(), "hello").value_or(QString()),
            "version");
    }
};

QUILLBROOK_SUITE(TestSnapInstallation, NoApplication)
#include "tst_SnapInstallation.moc"
