// The login item's entry on a small disk that is filled to the last byte.

#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Session/LinuxLoginItem.h"
#include "Support/FakeUserDefaults.h"
#include "Support/SmallDisk.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

QString whyNotPermitted;

// A disk with the user's settings on it.
struct Machine
{
    Machine()
        : item({ .reading = reading,
                   .writing = writing,
                   .defaults = defaults,
                   .session = { .configFolder = QString::fromStdString(disk.path("config")) },
                   .program = QString::fromStdString(disk.path("quillbrook")) },
            QDBusConnection(u"not connected"_s))
    {
        disk.folder("config/autostart");
        QFile program(QString::fromStdString(disk.path("quillbrook")));
        if (!program.open(QIODevice::WriteOnly)
            || !program.setPermissions(QFile::ReadOwner | QFile::ExeOwner))
            qFatal("no program on the small disk");
    }

    [[nodiscard]] QStringList names() const
    {
        return QDir(QString::fromStdString(disk.path("config/autostart")))
            .entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    /// What went wrong; empty when nothing did.
    [[nodiscard]] QString failure(bool enabled)
    {
        const auto outcome = item.setEnabled(enabled).result();
        return outcome ? QString() : outcome.error();
    }

    SmallDisk disk;
    LinuxFileReading reading;
    LinuxFileWriting writing;
    FakeUserDefaults defaults;
    LinuxLoginItem item;
};

} // namespace

class TestLoginItemOnFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!whyNotPermitted.isEmpty())
            QSKIP(qPrintable(whyNotPermitted));
    }

    void switchingOnFailsAndLeavesNothing()
    {
        Machine machine;
        machine.disk.fill();
        QCOMPARE(machine.failure(true), u"There is no space left on the disk."_s);
        QVERIFY(!machine.item.isEnabled());
        QVERIFY(machine.names().isEmpty());
    }

    void whatWasOnStaysOnAndCanBeSwitchedOff()
    {
        Machine machine;
        QCOMPARE(machine.failure(true), QString());
        machine.disk.fill();
        QVERIFY(!machine.failure(true).isEmpty());
        QVERIFY(machine.item.isEnabled());
        QCOMPARE(machine.failure(false), QString());
        QVERIFY(!machine.item.isEnabled());
        QVERIFY(machine.names().isEmpty());
    }
};

int main(int argc, char **argv)
{
    whyNotPermitted = PrivateMounts::enter();
    const QCoreApplication application(argc, argv);
    TestLoginItemOnFullDisk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_LoginItemOnFullDisk.moc"
