#include "Platform/Linux/Session/AutostartEntry.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QProcess>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestAutostartEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyIsRead()
    {
        const auto entry = AutostartEntry::parse("# a comment=1\n"
                                                 "[Desktop Entry]\n"
                                                 "Type=Application\r\n"
                                                 "Exec = /a\\\\b --background \n"
                                                 "TryExec=/a\\sb\\n\n"
                                                 "#Hidden=true\n"
                                                 "OnlyShowIn=GNOME;KDE;\n"
                                                 "NotShowIn=XFCE\n"
                                                 "X-GNOME-Autostart-enabled=false\n");
        const AutostartEntry expected{ .exec = u"/a\\b --background"_s,
            .tryExec = u"/a b\n"_s,
            .isSwitchedOff = true,
            .onlyShowIn = QStringList{ u"GNOME"_s, u"KDE"_s },
            .notShowIn = { u"XFCE"_s } };
        QVERIFY(entry.has_value());
        QVERIFY(*entry == expected);
    }

    void otherGroupsDoNotCount()
    {
        const auto entry = AutostartEntry::parse(
            "Hidden=true\n[Desktop Entry]\nExec=a\n[Desktop Action b]\nHidden=true\n");
        QVERIFY(entry.has_value());
        QVERIFY(*entry == AutostartEntry{ .exec = u"a"_s });
    }

    void withoutAnEntryThereIsNone_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("another group") << QByteArray("[KDE Desktop Entry]\nExec=a\n");
        QTest::newRow("bytes") << QByteArray("\xff\0\x01=", 4);
    }
    void withoutAnEntryThereIsNone()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!AutostartEntry::parse(text).has_value());
    }

    void desktopsDecide_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QStringList>("desktops");
        QTest::addColumn<bool>("starts");
        const QStringList gnome{ u"ubuntu"_s, u"GNOME"_s };
        QTest::newRow("plain") << QByteArray() << gnome << true;
        QTest::newRow("no desktop") << QByteArray() << QStringList() << true;
        QTest::newRow("hidden") << QByteArray("Hidden=true") << gnome << false;
        QTest::newRow("not hidden") << QByteArray("Hidden=false") << gnome << true;
        QTest::newRow("hidden, then not") << QByteArray("Hidden=true\nHidden=false") << gnome << true;
        QTest::newRow("switched off") << QByteArray("X-GNOME-Autostart-enabled=false") << gnome << false;
        QTest::newRow("switched on") << QByteArray("X-GNOME-Autostart-enabled=true") << gnome << true;
        QTest::newRow("only here") << QByteArray("OnlyShowIn=GNOME;") << gnome << true;
        QTest::newRow("only elsewhere") << QByteArray("OnlyShowIn=KDE;XFCE;") << gnome << false;
        QTest::newRow("only somewhere, no desktop")
            << QByteArray("OnlyShowIn=GNOME") << QStringList() << false;
        QTest::newRow("only nowhere") << QByteArray("OnlyShowIn=") << gnome << false;
        QTest::newRow("only in a name that begins like it")
            << QByteArray("OnlyShowIn=GNOME-Classic") << gnome << false;
        QTest::newRow("not here") << QByteArray("NotShowIn=KDE;ubuntu;") << gnome << false;
        QTest::newRow("not elsewhere") << QByteArray("NotShowIn=KDE") << gnome << true;
        QTest::newRow("nothing to start") << QByteArray("Exec=") << gnome << false;
    }
    void desktopsDecide()
    {
        QFETCH(QByteArray, lines);
        QFETCH(QStringList, desktops);
        const auto entry = AutostartEntry::parse("[Desktop Entry]\nExec=/a\n" + lines + '\n');
        QVERIFY(entry.has_value());
        QTEST(entry->isFor(desktops), "starts");
    }

    void fileIsWritten()
    {
        const QByteArray expected = "[Desktop Entry]\n"
                                    "Type=Application\n"
                                    "Version=1.4\n"
                                    "Name=Quillbrook\n"
                                    "Icon=com.tarnwick.Quillbrook\n"
                                    "Exec=/usr/bin/quillbrook --background\n"
                                    "TryExec=/usr/bin/quillbrook\n"
                                    "Terminal=false\n"
                                    "X-GNOME-Autostart-enabled=true\n";
        QCOMPARE(autostartFile(u"/usr/bin/quillbrook"_s, false), expected);
        QCOMPARE(autostartFile(u"/usr/bin/quillbrook"_s, true), expected + "Hidden=true\n");
    }

    void programsAreQuoted_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QByteArray>("exec");
        QTest::newRow("plain") << u"/opt/quill-brook_1.2"_s << QByteArray("/opt/quill-brook_1.2");
        QTest::newRow("blank") << u"/a b"_s << QByteArray("\"/a b\"");
        QTest::newRow("blank at the end") << u"/a "_s << QByteArray("\"/a \"");
        QTest::newRow("quote") << u"/a\"b"_s << QByteArray("\"/a\\\\\"b\"");
        QTest::newRow("apostrophe") << u"/a'b"_s << QByteArray("\"/a'b\"");
        QTest::newRow("backslash") << u"/a\\b"_s << QByteArray("\"/a\\\\\\\\b\"");
        QTest::newRow("dollar") << u"/a$HOME"_s << QByteArray("\"/a\\\\$HOME\"");
        QTest::newRow("backtick") << u"/a`b`"_s << QByteArray("\"/a\\\\`b\\\\`\"");
        QTest::newRow("percent") << u"/100%f"_s << QByteArray("/100%%f");
        QTest::newRow("brackets") << u"/a (1)"_s << QByteArray("\"/a (1)\"");
        QTest::newRow("line feed") << u"/a\nExec=b"_s << QByteArray("\"/a\\nExec=b\"");
        QTest::newRow("tab") << u"/a\tb"_s << QByteArray("\"/a\\tb\"");
        QTest::newRow("letters") << u"/é/日本"_s << QByteArray("/é/日本");
    }
    void programsAreQuoted()
    {
        QFETCH(QString, program);
        QFETCH(QByteArray, exec);
        for (const bool isHidden : { false, true }) {
            const auto file = autostartFile(program, isHidden);
            QVERIFY2(file.contains("\nExec=" + exec + " --background\n"), file.constData());
            const auto entry = AutostartEntry::parse(file);
            QVERIFY(entry.has_value());
            QCOMPARE(entry->tryExec, program);
            QCOMPARE(entry->isHidden, isHidden);
            QCOMPARE(entry->isFor({}), !isHidden);
        }
    }

    void filesAreValid_data() { programsAreQuoted_data(); }
    void filesAreValid()
    {
        QFETCH(QString, program);
        for (const bool isHidden : { false, true }) {
            const TempTree tree;
            tree.fileWith("com.tarnwick.Quillbrook.desktop", autostartFile(program, isHidden).toStdString());
            QProcess check;
            check.setProcessChannelMode(QProcess::MergedChannels);
            check.start(u"desktop-file-validate"_s,
                { u"--warn-kde"_s, tree.text("com.tarnwick.Quillbrook.desktop") });
            QVERIFY(check.waitForFinished(10'000));
            const auto said = check.readAll();
            QVERIFY2(check.exitCode() == 0 && said.isEmpty(), said.constData());
        }
    }
};

QUILLBROOK_SUITE(TestAutostartEntry, QCoreApplication)
#include "tst_AutostartEntry.moc"
