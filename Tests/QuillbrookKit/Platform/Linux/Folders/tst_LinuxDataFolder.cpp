#include "Platform/Linux/Folders/LinuxDataFolder.h"
#include "Support/FakeHomeFolder.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestLinuxDataFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEnvironmentIsAskedFirst_data()
    {
        QTest::addColumn<std::optional<QByteArray>>("told");
        QTest::addColumn<QByteArray>("folder");
        const QByteArray usual = "/home/someone/.local/share";
        QTest::newRow("nothing") << std::optional<QByteArray>() << usual;
        QTest::newRow("empty") << std::optional(QByteArray("")) << usual;
        QTest::newRow("relative") << std::optional(QByteArray("share")) << usual;
        QTest::newRow("a path") << std::optional(QByteArray("/data/me")) << QByteArray("/data/me");
        QTest::newRow("with slashes") << std::optional(QByteArray("/data//me/")) << QByteArray("/data/me");
        QTest::newRow("not UTF-8") << std::optional(QByteArray("/d\xFF")) << QByteArray("/d\xFF");
    }
    void theEnvironmentIsAskedFirst()
    {
        QFETCH(std::optional<QByteArray>, told);
        QFETCH(QByteArray, folder);
        QCOMPARE(folderFor(FakeHomeFolder(), told), folder);
    }
    void theUsualPlaceIsBelowTheBytesOfTheHome()
    {
        FakeHomeFolder home;
        home.raw = "/home/jos\xE9";
        QCOMPARE(folderFor(home, std::nullopt), QByteArray("/home/jos\xE9/.local/share"));
    }

private:
    static QByteArray folderFor(const FakeHomeFolder &home, const std::optional<QByteArray> &told)
    {
        const auto before = qgetenv("XDG_DATA_HOME");
        told ? qputenv("XDG_DATA_HOME", *told) : qunsetenv("XDG_DATA_HOME");
        const auto found = linuxDataFolder(home);
        qputenv("XDG_DATA_HOME", before);
        return QByteArray::fromStdString(found);
    }
};

QUILLBROOK_SUITE(TestLinuxDataFolder, QCoreApplication)
#include "tst_LinuxDataFolder.moc"
