// Desktop entries of any content.

#include "Support/Suite.h"
#include "Uninstaller/Linux/DesktopEntry.h"

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

void speakGerman()
{
    qputenv("LANGUAGE", "de_AT@old");
    qputenv("LC_ALL", "C.UTF-8");
}

} // namespace

class TestDesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAreRead_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << QByteArray("Name=Aurora") << u"Aurora"_s;
        QTest::newRow("in the person's language")
            << QByteArray("Name=Files\nName[fr]=Fichiers\nName[de]=Dateien") << u"Dateien"_s;
        QTest::newRow("in that of the country")
            << QByteArray("Name=Files\nName[de]=Dateien\nName[de_AT]=Akten\nName[de_CH]=Ordner")
            << u"Akten"_s;
        QTest::newRow("in that of the script")
            << QByteArray("Name=Files\nName[de_AT@old]=Acten\nName[de]=Dateien") << u"Acten"_s;
        QTest::newRow("in that of another script")
            << QByteArray("Name=Files\nName[de@latin]=Dateien") << u"Files"_s;
        QTest::newRow("an empty name of the language") << QByteArray("Name=Files\nName[de]=") << u"Files"_s;
        QTest::newRow("an empty group") << QByteArray("Name=One\n[]\nA=b") << QString();
        QTest::newRow("a group twice") << QByteArray("Name=One\n[Desktop Entry]\nName=Two") << u"Two"_s;
        QTest::newRow("with escapes") << QByteArray("Name=A\\sB\\tC\\\\D") << u"A B C\\D"_s;
        QTest::newRow("characters that are not seen")
            << QByteArray("Name=Bad\u202eEman\u0007\u200b") << u"BadEman"_s;
        QTest::newRow("in another group") << QByteArray("Name=One\n[Desktop Action x]\nName=Two") << u"One"_s;
        QTest::newRow("none") << QByteArray("Exec=x") << QString();
        QTest::newRow("blank") << QByteArray("Name=  ") << QString();
        QTest::newRow("too long") << "Name=" + QByteArray(5000, 'n') << QString(200, u'n');
        QTest::newRow("a group without its end") << QByteArray("Name=One\n[Desktop") << QString();
        QTest::newRow("a line that says nothing") << QByteArray("Name=One\nnonsense") << QString();
        QTest::newRow("a zero byte") << QByteArray("Name=One\nA=\0", 12) << QString();
        QTest::newRow("megabytes") << "Name=One\nA=" + QByteArray(2'000'000, 'x') << QString();
        QTest::newRow("not UTF-8") << QByteArray("Name=\xff\xfe") << QString();
    }
    void namesAreRead()
    {
        QFETCH(QByteArray, lines);
        const auto entry = DesktopEntry::parse("[Desktop Entry]\nType=Application\n" + lines + "\n");
        QTEST(entry ? entry->name : QString(), "name");
        QVERIFY(!entry || entry->isApplication);
    }

    void commandsAreTakenApart_data()
    {
        QTest::addColumn<QByteArray>("exec");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("with a code") << QByteArray("aurora --new %U")
                                     << QStringList{ u"aurora"_s, u"--new"_s };
        QTest::newRow("quoted") << QByteArray("\"/home/a/My Tool\" %f 100%%")
                                << QStringList{ u"/home/a/My Tool"_s, u"100%"_s };
        QTest::newRow("an open quote") << QByteArray("\"aurora") << QStringList();
        QTest::newRow("nothing") << QByteArray("") << QStringList();
    }
    void commandsAreTakenApart()
    {
        QFETCH(QByteArray, exec);
        const auto entry = DesktopEntry::parse("[Desktop Entry]\nName=A\nExec=" + exec);
        QTEST(entry->command, "words");
    }

    void desktopsDecideWhoIsShown_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<bool>("isShown");
        QTest::newRow("everywhere") << QByteArray() << true;
        QTest::newRow("here alone") << QByteArray("OnlyShowIn=XFCE;GNOME;") << true;
        QTest::newRow("elsewhere alone") << QByteArray("OnlyShowIn=XFCE;KDE;") << false;
        QTest::newRow("not here") << QByteArray("NotShowIn=GNOME;") << false;
        QTest::newRow("not elsewhere") << QByteArray("NotShowIn=KDE") << true;
        QTest::newRow("the first name decides") << QByteArray("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;") << true;
        QTest::newRow("a part of a name") << QByteArray("OnlyShowIn=GNOME-Classic;") << false;
    }
    void desktopsDecideWhoIsShown()
    {
        QFETCH(QByteArray, lines);
        const auto entry = DesktopEntry::parse("[Desktop Entry]\nName=A\n" + lines);
        QTEST(entry->isShownIn({ u"ubuntu"_s, u"GNOME"_s }), "isShown");
        QCOMPARE(entry->isShownIn({}), !lines.startsWith("Only"));
    }

    void theOtherKeysAreRead()
    {
        const auto entry = DesktopEntry::parse(
            "[Desktop Entry]\nName=A\nType=Link\nHidden=true\nNoDisplay=true\nTryExec=t\nIcon=i\n"
            "X-Flatpak=org.f.F\nX-SnapInstanceName=s\nX-AppImage-Version=1.2\n");
        QCOMPARE(entry,
            std::optional(DesktopEntry{ .name = u"A"_s,
                .tryExec = u"t"_s,
                .icon = u"i"_s,
                .isHidden = true,
                .isDisplayed = false,
                .flatpak = u"org.f.F"_s,
                .snap = u"s"_s,
                .appImageVersion = u"1.2"_s }));
        // It only takes another's place.
        QVERIFY(DesktopEntry::parse("[Desktop Entry]\nHidden=true\n"));
        QVERIFY(!DesktopEntry::parse(""));
    }
};

QUILLBROOK_SUITE(TestDesktopEntry, NoApplication, &speakGerman)
#include "tst_DesktopEntry.moc"
