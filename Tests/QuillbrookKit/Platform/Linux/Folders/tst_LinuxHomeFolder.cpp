#include "Platform/Linux/Files/FlatpakInfo.h"
#include "Platform/Linux/Folders/LinuxHomeFolder.h"
#include "Support/Suite.h"

#include <QTest>

#include <pwd.h>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

const auto accountHome = u"/home/someone"_s;

QProcessEnvironment environment(const QHash<QString, QString> &values)
{
    QProcessEnvironment result;
    for (auto value = values.begin(); value != values.end(); ++value)
        result.insert(value.key(), value.value());
    return result;
}

} // namespace

class TestLinuxHomeFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thisProcessHasTheHomeOfItsAccount()
    {
        const auto *entry = ::getpwuid(::getuid());
        if (entry == nullptr || QByteArrayView(entry->pw_dir).startsWith('/') == false)
            QSKIP("this account has no home in the database");
        const auto before = qgetenv("HOME");
        qputenv("HOME", "/somewhere/else");
        const LinuxHomeFolder home;
        qputenv("HOME", before);
        QCOMPARE(home.realHomeDirectory(), QString::fromUtf8(entry->pw_dir));
    }

    void outsideASandboxTheTwoAreAlike()
    {
        const LinuxHomeFolder home({ .accountHome = accountHome.toStdString() });
        QCOMPARE(home.realHomeDirectory(), accountHome);
        QCOMPARE(home.homeDirectory(), accountHome);
    }

    void environmentDoesNotDecide()
    {
        const LinuxHomeFolder home({ .environment = environment({ { u"HOME"_s, u"/root"_s } }),
            .accountHome = accountHome.toStdString() });
        QCOMPARE(home.realHomeDirectory(), accountHome);
        QCOMPARE(home.homeDirectory(), accountHome);
    }

    void accountHomeIsNormalised_data()
    {
        QTest::addColumn<QByteArray>("told");
        QTest::addColumn<QByteArray>("raw");
        QTest::addColumn<QString>("text");
        const auto home = accountHome.toUtf8();
        QTest::newRow("trailing slash") << QByteArray("/home/someone/") << home << accountHome;
        QTest::newRow("doubled slashes") << QByteArray("//home//someone") << home << accountHome;
        QTest::newRow("dots") << QByteArray("/home/./other/../someone") << home << accountHome;
        QTest::newRow("root of the disk") << QByteArray("/") << QByteArray("/") << u"/"_s;
        QTest::newRow("not UTF-8") << QByteArray("/caf\xE9/") << QByteArray("/caf\xE9") << u"/caf\uFFFD"_s;
    }

    void accountHomeIsNormalised()
    {
        QFETCH(QByteArray, told);
        const LinuxHomeFolder home({ .accountHome = told.toStdString() });
        QTEST(QByteArray::fromStdString(home.rawRealHomeDirectory()), "raw");
        QTEST(home.realHomeDirectory(), "text");
    }

    void accountWithoutAHomeHasItsEnvironments_data()
    {
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("environmentHome");
        QTest::addColumn<QString>("home");
        QTest::newRow("no entry") << QString() << u"/srv/home/"_s << u"/srv/home"_s;
        QTest::newRow("relative entry") << u"home"_s << u"/srv/home"_s << u"/srv/home"_s;
        QTest::newRow("relative environment") << QString() << u"home"_s << u"/"_s;
        QTest::newRow("nothing") << QString() << QString() << u"/"_s;
    }

    void accountWithoutAHomeHasItsEnvironments()
    {
        QFETCH(QString, told);
        QFETCH(QString, environmentHome);
        const auto account = told.isNull() ? std::nullopt : std::optional(told.toStdString());
        const LinuxHomeFolder home(
            { .environment = environment({ { u"HOME"_s, environmentHome } }), .accountHome = account });
        QTEST(home.realHomeDirectory(), "home");
    }

    void flatpakHome_data()
    {
        QTest::addColumn<QByteArray>("info");
        QTest::addColumn<QString>("home");
        const QByteArray application("[Application]\nname=org.example.App\n");
        QTest::newRow("without permission") << application + "[Context]\nfilesystems=xdg-download;\n"
                                            << u"/home/someone/.var/app/org.example.App"_s;
        QTest::newRow("without any context") << application << u"/home/someone/.var/app/org.example.App"_s;
        QTest::newRow("home") << application + "[Context]\nfilesystems=home;\n" << accountHome;
        QTest::newRow("host") << application + "[Context]\nfilesystems=xdg-run/x;host:rw;\n" << accountHome;
        QTest::newRow("not an application")
            << QByteArray("[Runtime]\nname=org.example.Runtime\n") << accountHome;
        QTest::newRow("damaged") << QByteArray("\x00\xff=\n[[[", 7) << accountHome;
    }

    void flatpakHome()
    {
        QFETCH(QByteArray, info);
        const LinuxHomeFolder home({ .flatpakInfo = info, .accountHome = accountHome.toStdString() });
        QCOMPARE(home.realHomeDirectory(), accountHome);
        QTEST(home.homeDirectory(), "home");
        QTEST(QString::fromStdString(home.rawHomeDirectory()), "home");
    }

    void flatpakInfoIsParsed_data()
    {
        QTest::addColumn<QByteArray>("filesystems");
        QTest::addColumn<bool>("seesHome");
        QTest::newRow("home") << QByteArray("home") << true;
        QTest::newRow("read only") << QByteArray("home:ro;") << true;
        QTest::newRow("host among others") << QByteArray("xdg-music;host;/media") << true;
        QTest::newRow("a folder in it") << QByteArray("~/Documents;xdg-documents;home/x") << false;
        QTest::newRow("taken away") << QByteArray("host;!home;") << false;
        QTest::newRow("system only") << QByteArray("host-etc;host-os") << false;
        QTest::newRow("none") << QByteArray() << false;
    }

    void flatpakInfoIsParsed()
    {
        QFETCH(QByteArray, filesystems);
        QFETCH(bool, seesHome);
        const QByteArray text = "[Application]\nname=org.example.App\nruntime=x\n\n[Instance]\nname=other\n"
                                "filesystems=home\n\n[Context]\nshared=network;\nfilesystems="
            + filesystems + "\n";
        const FlatpakInfo expected{
            .application = u"org.example.App"_s, .runtime = u"x"_s, .seesHome = seesHome
        };
        QVERIFY(parseFlatpakInfo(text) == expected);
    }

    void snapHome_data()
    {
        QTest::addColumn<QString>("environmentHome");
        QTest::addColumn<bool>("isSnap");
        QTest::addColumn<QString>("home");
        const auto ownHome = u"/home/someone/snap/app/12"_s;
        QTest::newRow("strict") << ownHome << true << ownHome;
        QTest::newRow("classic") << accountHome << true << accountHome;
        QTest::newRow("no snap") << ownHome << false << accountHome;
    }

    void snapHome()
    {
        QFETCH(QString, environmentHome);
        QFETCH(bool, isSnap);
        auto variables = environment(
            { { u"HOME"_s, environmentHome }, { u"SNAP_USER_DATA"_s, u"/home/someone/snap/app/12"_s } });
        if (isSnap)
            variables.insert(u"SNAP"_s, u"/snap/app/12"_s);
        const LinuxHomeFolder home({ .environment = variables, .accountHome = accountHome.toStdString() });
        QCOMPARE(home.realHomeDirectory(), accountHome);
        QTEST(home.homeDirectory(), "home");
    }
};

QUILLBROOK_SUITE(TestLinuxHomeFolder, QCoreApplication)
#include "tst_LinuxHomeFolder.moc"
