#include "Catalogue/Simulators.h"
#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Support/FakeProcessRunner.h"
#include "Support/PropertyListBytes.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QFile>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace PropertyListBytes;

class TestSimulators : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bootedIdsAreReadOutOfTheListing()
    {
        const QByteArray listing = "== Devices ==\n"
                                   "-- iOS 17.2 --\n"
                                   "    iPhone 15 (4B8F0B2E-0000-4B4B-8888-000000000001) (Booted) \n"
                                   "    iPhone 15 Pro (4B8F0B2E-0000-4B4B-8888-000000000002) (Shutdown) \n"
                                   "\n"
                                   "-- watchOS 10.2 --\n"
                                   "    Apple Watch (\t4B8F0B2E-0000-4B4B-8888-000000000003 ) (Booted)\n";
        QCOMPARE(Simulators::parseBootedIds(listing),
            QSet<QString>(
                { u"4B8F0B2E-0000-4B4B-8888-000000000001"_s, u"4B8F0B2E-0000-4B4B-8888-000000000003"_s }));
    }

    void oddLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QSet<QString>>("ids");
        QTest::newRow("nothing") << QByteArray() << QSet<QString>();
        QTest::newRow("not booted") << QByteArray("iPhone (ID) (Shutdown)") << QSet<QString>();
        QTest::newRow("another letter case") << QByteArray("iPhone (ID) (booted)") << QSet<QString>();
        QTest::newRow("no name and no identifier") << QByteArray("(Booted)") << QSet<QString>();
        QTest::newRow("no identifier") << QByteArray("iPhone (Booted)") << QSet<QString>{ u"Booted"_s };
        QTest::newRow("a parenthesis in the name gives a wrong piece, kept on purpose")
            << QByteArray("iPad (9th generation) (ID) (Booted)") << QSet<QString>{ u"9th generation"_s };
        QTest::newRow("bytes that are not UTF-8")
            << QByteArray("\xff\xfe (ID) (Booted)") << QSet<QString>{ u"ID"_s };
        QTest::newRow("no line feed at the end")
            << QByteArray("a (ID) (Booted)\nb (JD) (Booted)") << QSet<QString>{ u"ID"_s, u"JD"_s };
    }
    void oddLines()
    {
        QFETCH(QByteArray, line);
        QTEST(Simulators::parseBootedIds(line), "ids");
    }

    void toolIsAskedOnceByItsPath()
    {
        FakeProcessRunner processes;
        processes.answer = [](const ProcessRunner::Command &) {
            return ProcessRunner::Result{ .output = "a (ID) (Booted)", .exited = true, .exitCode = 3 };
        };
        QCOMPARE(Simulators::bootedIds(processes), QSet<QString>{ u"ID"_s });
        QCOMPARE(processes.commands.size(), 1);
        QCOMPARE(processes.commands[0].program, u"/usr/bin/xcrun"_s);
        QCOMPARE(processes.commands[0].arguments, QStringList({ u"simctl"_s, u"list"_s, u"devices"_s }));
    }

    void missingToolMeansThatNothingRuns() { QVERIFY(Simulators::bootedIds(FakeProcessRunner()).isEmpty()); }

    void name_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("name");
        const auto list = [](const QByteArray &entries) { return xml("<dict>" + entries + "</dict>"); };
        const QByteArray named = "<key>name</key><string>iPhone 15</string>";
        QTest::newRow("name and runtime")
            << list(named + "<key>runtime</key><string>com.apple.CoreSimulator.SimRuntime.iOS-17-2</string>")
            << u"iPhone 15 \u00B7 iOS.17.2"_s;
        QTest::newRow("no runtime") << list(named) << u"iPhone 15"_s;
        QTest::newRow("a runtime that is no text")
            << list(named + "<key>runtime</key><integer>17</integer>") << u"iPhone 15"_s;
        QTest::newRow("an empty runtime")
            << list(named + "<key>runtime</key><string></string>") << u"iPhone 15"_s;
        QTest::newRow("a runtime of dots")
            << list(named + "<key>runtime</key><string>...</string>") << u"iPhone 15"_s;
        QTest::newRow("a runtime without dots")
            << list(named + "<key>runtime</key><string>iOS-17</string>") << u"iPhone 15 \u00B7 iOS.17"_s;
        QTest::newRow("a runtime that ends in a dot")
            << list(named + "<key>runtime</key><string>a.iOS-17.</string>") << u"iPhone 15 \u00B7 iOS.17"_s;
        QTest::newRow("no name, whatever the runtime")
            << list("<key>runtime</key><string>a.iOS-17</string>") << u"(none)"_s;
        QTest::newRow("a name that is no text") << list("<key>name</key><true/>") << u"(none)"_s;
        QTest::newRow("binary") << binary({ dictionary({ 1, 2 }, { 3, 4 }), text("name"), text("runtime"),
            text("iPad"), text("x.iOS-16-0") })
                                << u"iPad \u00B7 iOS.16.0"_s;
        QTest::newRow("not a dictionary") << xml("<array/>") << u"(none)"_s;
        QTest::newRow("damaged") << QByteArray("bplist00 damaged") << u"(none)"_s;
        QTest::newRow("empty") << QByteArray() << u"(none)"_s;
    }
    void name()
    {
        QFETCH(QByteArray, content);
        TempTree tree;
        tree.folder("device");
        QFile file(tree.text("device/device.plist"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QTEST(Simulators::name(LinuxFileReading(), tree.path("device")).value_or(u"(none)"_s), "name");
    }

    void folderWithoutAPropertyListHasNoName()
    {
        TempTree tree;
        tree.folder("device");
        QVERIFY(!Simulators::name(LinuxFileReading(), tree.path("device")));
        tree.folder("device/device.plist");
        QVERIFY(!Simulators::name(LinuxFileReading(), tree.path("device")));
        QVERIFY(!Simulators::name(LinuxFileReading(), tree.path("nowhere")));
    }

    void pipeInThePlaceOfThePropertyListIsNotWaitedFor()
    {
        TempTree tree;
        tree.pipe("device/device.plist");
        QVERIFY(!Simulators::name(LinuxFileReading(), tree.path("device")));
    }
};

QUILLBROOK_SUITE(TestSimulators, NoApplication)
#include "tst_Simulators.moc"
