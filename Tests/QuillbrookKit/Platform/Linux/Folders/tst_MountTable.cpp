#include "Platform/Linux/Folders/MountTable.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;

class TestMountTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesBecomeMounts_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("understood");
        QTest::addColumn<quint64>("id");
        QTest::addColumn<quint64>("parent");
        QTest::addColumn<QByteArray>("mountPoint");
        const auto row
            = [](const char *name, QByteArray line, quint64 id, quint64 parent, QByteArray mountPoint) {
                  QTest::newRow(name) << line << true << id << parent << mountPoint;
              };
        row("root", "29 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw", 29, 1, "/");
        row("no optional fields", "31 29 0:27 / /proc rw - proc proc rw", 31, 29, "/proc");
        row("bind mount", "96 29 254:0 /src /home/u/bound rw - ext4 /dev/vda rw", 96, 29, "/home/u/bound");
        row("blank, tab, line feed, backslash", "9 8 0:1 / /a\\040b\\011c\\012d\\134e rw - t s rw", 9, 8,
            "/a b\tc\nd\\e");
        row("escaped digits after a backslash", "9 8 0:1 / /a\\134040 rw - t s rw", 9, 8, "/a\\040");
        row("backslash without digits", "9 8 0:1 / /a\\04 rw - t s rw", 9, 8, "/a\\04");
        row("name that is not UTF-8", "9 8 0:1 / /\xFF rw - t s rw", 9, 8, "/\xFF");
        row("cut off after the mount point", "9 8 0:1 / /a", 9, 8, "/a");
        const auto broken = [](const char *name, QByteArray line) {
            QTest::newRow(name) << line << false << quint64(0) << quint64(0) << QByteArray();
        };
        broken("empty", "");
        broken("too short", "9 8 0:1 /");
        broken("no number", "x 8 0:1 / /a rw - t s rw");
        broken("number with letters", "9z 8 0:1 / /a rw - t s rw");
        broken("negative number", "-9 8 0:1 / /a rw - t s rw");
        broken("mount point out of reach", "9 8 0:1 / (unreachable) rw - t s rw");
    }

    void linesBecomeMounts()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, understood);
        QFETCH(quint64, id);
        QFETCH(quint64, parent);
        QFETCH(QByteArray, mountPoint);
        const auto mounts = MountTable::parse(line.toStdString());
        QCOMPARE(mounts.size(), size_t(understood ? 1 : 0));
        if (!understood)
            return;
        QCOMPARE(mounts[0].id, id);
        QCOMPARE(mounts[0].parentId, parent);
        QCOMPARE(mounts[0].device, line.split(' ')[2].toStdString());
        QCOMPARE(mounts[0].root, line.split(' ')[3].toStdString());
        QCOMPARE(mounts[0].mountPoint, mountPoint.toStdString());
    }

    void theFileSystemStandsBehindAHyphen_data()
    {
        QTest::addColumn<QByteArray>("rest");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("source");
        QTest::newRow("plain") << QByteArray("- ext4 /dev/vda rw") << QByteArray("ext4")
                               << QByteArray("/dev/vda");
        QTest::newRow("behind other fields") << QByteArray("shared:1 master:2 - fuse.portal portal rw")
                                             << QByteArray("fuse.portal") << QByteArray("portal");
        QTest::newRow("with a blank")
            << QByteArray("- nfs4 host:/a\\040b rw") << QByteArray("nfs4") << QByteArray("host:/a b");
        QTest::newRow("not told") << QByteArray("shared:1") << QByteArray() << QByteArray();
        QTest::newRow("cut off") << QByteArray("-") << QByteArray() << QByteArray();
    }

    void theFileSystemStandsBehindAHyphen()
    {
        QFETCH(QByteArray, rest);
        const auto mounts = MountTable::parse("9 8 0:1 / /a rw " + rest.toStdString());
        QCOMPARE(mounts.size(), 1U);
        QTEST(QByteArray::fromStdString(mounts[0].type), "type");
        QTEST(QByteArray::fromStdString(mounts[0].source), "source");
    }

    void severalLinesKeepTheirOrder()
    {
        const auto mounts = MountTable::parse("1 0 0:1 / / rw - t s rw\n"
                                              "broken\n"
                                              "\n"
                                              "2 1 0:2 / /a rw - t s rw\n"
                                              "3 2 0:3 / /a rw - t s rw");
        const std::vector<Mount> expected{ { 1, 0, "0:1", "/", "/", "t", "s" },
            { 2, 1, "0:2", "/", "/a", "t", "s" }, { 3, 2, "0:3", "/", "/a", "t", "s" } };
        QVERIFY(mounts == expected);
    }

    void ownTableHasTheRoot()
    {
        const auto mounts = MountTable::read();
        QVERIFY(mounts.has_value());
        QVERIFY(std::ranges::any_of(*mounts, [](const Mount &mount) { return mount.mountPoint == "/"; }));
    }
};

QUILLBROOK_SUITE(TestMountTable, QCoreApplication)
#include "tst_MountTable.moc"
