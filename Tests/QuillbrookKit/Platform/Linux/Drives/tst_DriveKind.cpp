// Kinds of drives, by a made-up folder of devices and by a disk service that the suite plays on a bus of its
// own.

#include "Platform/Linux/Drives/DriveKind.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTest>
#include <QThread>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto nobody = u"unix:path=/nowhere/at/all"_s;

Mount mountOf(const char *type, const char *source = "/dev/sdb1")
{
    return { .type = type, .source = source };
}

std::string numberOfTest(const std::string &path)
{
    return path == "/dev/sdb1" ? "8:17" : path == "/dev/mapper/secret" ? "254:0" : std::string();
}

// Answers as the disk service does; each property by the name of the object and its own.
class PlayedService final : public QDBusVirtualObject
{
public:
    QMap<QString, QVariant> properties;

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QVariant answer;
        if (message.member() == u"ResolveDevice"_s)
            answer = QVariant::fromValue(QList<QDBusObjectPath>{ QDBusObjectPath(u"/block"_s) });
        else
            answer = QVariant::fromValue(
                QDBusVariant(properties.value(message.path() + u' ' + message.arguments().at(1).toString())));
        return connection.send(message.createReply(answer));
    }
};

} // namespace

class TestDriveKind : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theKernelsFoldersTell_data()
    {
        QTest::addColumn<QByteArrayList>("way");
        QTest::addColumn<QByteArray>("removable");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<bool>("isRemovable");
        const auto row = [](const char *name, const char *way, const char *removable, const char *type,
                             bool isRemovable) {
            QTest::newRow(name) << QByteArrayList{ way } << QByteArray(removable) << QByteArray(type)
                                << isRemovable;
        };
        row("a disk inside", "devices/pci/ata1/block/sdb", "0\n", "", false);
        row("a stick", "devices/pci/usb1/block/sdb", "1\n", "", true);
        row("a hard disk at a USB port", "devices/pci/usb2/block/sdb", "0\n", "", true);
        row("a tray", "devices/pci/ata1/block/sdb", "1\n", "", true);
        row("a card", "devices/platform/mmc0/block/sdb", "0\n", "SD\n", true);
        row("what is soldered in", "devices/platform/mmc0/block/sdb", "0\n", "MMC\n", false);
    }

    void theKernelsFoldersTell()
    {
        QFETCH(QByteArrayList, way);
        QFETCH(QByteArray, removable);
        QFETCH(QByteArray, type);
        QFETCH(bool, isRemovable);
        const TempTree devices;
        const auto disk = way.constFirst().toStdString();
        devices.fileWith(disk + "/removable", removable.toStdString());
        devices.fileWith(disk + "/device/type", type.toStdString());
        devices.fileWith(disk + "/sdb1/partition", "1\n");
        devices.folder("dev/block");
        devices.link("dev/block/8:17", "../../" + disk + "/sdb1");
        // An encrypted one stands upon it.
        devices.folder("devices/virtual/block/dm-0/slaves");
        devices.link("devices/virtual/block/dm-0/slaves/sdb1", "../../../../../" + disk + "/sdb1");
        devices.link("dev/block/254:0", "../../devices/virtual/block/dm-0");
        const DriveKinds kinds(
            { .devices = devices.path(), .busAddress = nobody, .deviceNumber = &numberOfTest });
        const DriveKind expected{ .isRemovable = isRemovable, .isInternal = !isRemovable };
        QVERIFY(kinds.of(mountOf("ext4")) == expected);
        QVERIFY(kinds.of(mountOf("ext4", "/dev/mapper/secret")) == expected);
    }

    void whatStandsOnNoDeviceTellsLittle_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<bool>("isNetwork");
        QTest::newRow("network") << QByteArray("nfs4") << QByteArray("host:/a") << true;
        QTest::newRow("network by FUSE") << QByteArray("fuse.sshfs") << QByteArray("host:/a") << true;
        QTest::newRow("memory") << QByteArray("tmpfs") << QByteArray("none") << false;
        QTest::newRow("other FUSE") << QByteArray("fuse") << QByteArray("/a/folder") << false;
        QTest::newRow("device that is gone") << QByteArray("ext4") << QByteArray("/dev/sdz") << false;
    }

    void whatStandsOnNoDeviceTellsLittle()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, source);
        QFETCH(bool, isNetwork);
        const DriveKinds kinds({ .busAddress = nobody, .deviceNumber = &numberOfTest });
        const DriveKind expected{ .isRemovable = false,
            .isInternal = isNetwork ? std::optional(false) : std::nullopt };
        QVERIFY(kinds.of(mountOf(type.constData(), source.constData())) == expected);
    }

    void theDiskServiceIsBelievedFirst_data()
    {
        using Properties = QMap<QString, QVariant>;
        QTest::addColumn<Properties>("properties");
        QTest::addColumn<bool>("isRemovable");
        QTest::addColumn<bool>("isInternal");
        const auto drive = [](bool isSystem, bool isRemovable, bool isMedium, const char *bus) {
            return Properties{ { u"/block HintSystem"_s, isSystem },
                { u"/block CryptoBackingDevice"_s, QVariant::fromValue(QDBusObjectPath(u"/"_s)) },
                { u"/block Drive"_s, QVariant::fromValue(QDBusObjectPath(u"/drive"_s)) },
                { u"/drive Removable"_s, isRemovable }, { u"/drive MediaRemovable"_s, isMedium },
                { u"/drive ConnectionBus"_s, QString::fromLatin1(bus) } };
        };
        QTest::newRow("built in") << drive(true, false, false, "") << false << true;
        QTest::newRow("by its bus") << drive(false, false, false, "usb") << true << false;
        QTest::newRow("by itself") << drive(false, true, false, "") << true << false;
        QTest::newRow("by its medium") << drive(false, false, true, "") << true << false;
        QTest::newRow("neither") << drive(false, false, false, "") << false << false;
        auto encrypted = drive(false, false, false, "sdio");
        encrypted[u"/block CryptoBackingDevice"_s] = QVariant::fromValue(QDBusObjectPath(u"/below"_s));
        encrypted[u"/below Drive"_s] = encrypted.take(u"/block Drive"_s);
        QTest::newRow("encrypted") << encrypted << true << false;
    }

    void theDiskServiceIsBelievedFirst()
    {
        using Properties = QMap<QString, QVariant>;
        QFETCH(Properties, properties);
        PrivateBus bus;
        auto connection = bus.connection();
        QVERIFY(connection.isConnected());
        PlayedService service;
        service.properties = properties;
        QVERIFY(connection.registerVirtualObject(u"/"_s, &service, QDBusConnection::SubPath));
        QVERIFY(connection.registerService(u"org.freedesktop.UDisks2"_s));
        // It asks from a thread of its own, as it does in the program, while this one answers.
        DriveKind kind;
        const std::unique_ptr<QThread> asking(QThread::create([&] {
            kind = DriveKinds({ .busAddress = bus.address(), .deviceNumber = &numberOfTest })
                       .of(mountOf("ext4"));
        }));
        asking->start();
        QTRY_VERIFY(asking->isFinished());
        QTEST(kind.isRemovable.value_or(false), "isRemovable");
        QTEST(kind.isInternal.value_or(false), "isInternal");
    }
};

QUILLBROOK_SUITE(TestDriveKind, QCoreApplication)
#include "tst_DriveKind.moc"
