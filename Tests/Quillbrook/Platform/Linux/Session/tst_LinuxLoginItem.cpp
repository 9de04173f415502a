#include "Platform/Linux/Files/LinuxFileReading.h"
#include "Platform/Linux/Files/LinuxFileWriting.h"
#include "Platform/Linux/Session/AutostartEntry.h"
#include "Platform/Linux/Session/LinuxLoginItem.h"
#include "Support/FakePortal.h"
#include "Support/FakeUserDefaults.h"
#include "Support/MemoryFiles.h"
#include "Support/PrivateBus.h"
#include "Support/RootGivenUp.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <memory>
#include <unistd.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto remembered = u"Quillbrook.launchesAtLogin"_s;
const std::string own = "config/autostart/com.tarnwick.Quillbrook.desktop";
const std::string systemWide = "etc/autostart/com.tarnwick.Quillbrook.desktop";
const QByteArray plain = "[Desktop Entry]\nType=Application\nName=Q\nExec=q --background\n";

} // namespace

class TestLinuxLoginItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_tree = std::make_unique<TempTree>();
        m_tree->fileWith("bin/quillbrook", "#!/bin/sh\n");
        m_tree->permissions("bin/quillbrook", 0755);
        m_defaults.values.clear();
        m_config = "config";
    }

    void switchingOnWritesTheEntry()
    {
        const auto item = loginItem();
        QVERIFY(!item->isEnabled());
        QVERIFY(switched(*item, true));
        QVERIFY(item->isEnabled());
        QCOMPARE(content(own), autostartFile(m_tree->text("bin/quillbrook"), false));
        QVERIFY(m_defaults.values.isEmpty());
        // As after a restart.
        QVERIFY(loginItem()->isEnabled());
    }

    void theEntryLiesInTheFolderOfThoseBytes()
    {
        m_config = "jos\xE9/.config";
        m_tree->folder(m_config);
        const auto entry = m_tree->path(m_config + "/autostart/com.tarnwick.Quillbrook.desktop");
        const auto item = loginItem();
        QVERIFY(switched(*item, true));
        QVERIFY(item->isEnabled());
        QCOMPARE(::access(entry.c_str(), F_OK), 0);
        QVERIFY(switched(*item, false));
        QVERIFY(!item->isEnabled());
        QVERIFY(::access(entry.c_str(), F_OK) != 0);
    }

    void switchingOnWritesAnewWhatWasChanged_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::newRow("hidden by Plasma's settings") << plain + "Hidden=true\n";
        QTest::newRow("switched off by GNOME's") << plain + "X-GNOME-Autostart-enabled=false\n";
        QTest::newRow("of a program that is gone") << plain + "TryExec=/nowhere/quillbrook\n";
        QTest::newRow("for another desktop") << plain + "OnlyShowIn=XFCE;\n";
        QTest::newRow("garbage") << QByteArray("\xff\xfe");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("far too long") << plain + QByteArray(1 << 20, '#');
    }
    void switchingOnWritesAnewWhatWasChanged()
    {
        QFETCH(QByteArray, before);
        m_tree->fileWith(own, before.toStdString());
        const auto item = loginItem();
        QVERIFY(!item->isEnabled());
        QVERIFY(switched(*item, true));
        QVERIFY(item->isEnabled());
        QCOMPARE(content(own), autostartFile(m_tree->text("bin/quillbrook"), false));
    }

    void entryIsReadAnewEachTime()
    {
        const auto item = loginItem();
        m_tree->fileWith(own, plain.toStdString());
        QVERIFY(item->isEnabled());
        m_tree->fileWith(own, (plain + "Hidden=true\n").toStdString());
        QVERIFY(!item->isEnabled());
        m_tree->fileWith(own, (plain + "TryExec=quillbrook\n").toStdString());
        QVERIFY(item->isEnabled());
        m_tree->permissions("bin/quillbrook", 0644);
        QVERIFY(!item->isEnabled());
    }

    void firstEntryOfTheNameCounts_data()
    {
        QTest::addColumn<QByteArray>("ownEntry");
        QTest::addColumn<QByteArray>("systemEntry");
        QTest::addColumn<bool>("isEnabled");
        const QByteArray hidden = plain + "Hidden=true\n";
        QTest::newRow("neither") << QByteArray() << QByteArray() << false;
        QTest::newRow("the system's") << QByteArray() << plain << true;
        QTest::newRow("the system's is hidden") << QByteArray() << hidden << false;
        QTest::newRow("the user's hides the system's") << hidden << plain << false;
        QTest::newRow("the user's shows a hidden one") << plain << hidden << true;
    }
    void firstEntryOfTheNameCounts()
    {
        QFETCH(QByteArray, ownEntry);
        QFETCH(QByteArray, systemEntry);
        if (!ownEntry.isEmpty())
            m_tree->fileWith(own, ownEntry.toStdString());
        if (!systemEntry.isEmpty())
            m_tree->fileWith(systemWide, systemEntry.toStdString());
        QTEST(loginItem()->isEnabled(), "isEnabled");
    }

    void switchingOffRemovesTheEntry()
    {
        m_tree->file("config/autostart/another.desktop");
        const auto item = loginItem();
        QVERIFY(switched(*item, true));
        QVERIFY(switched(*item, false));
        QVERIFY(!item->isEnabled());
        QVERIFY(!exists(own));
        QVERIFY(exists("config/autostart/another.desktop"));
        // Once more changes nothing.
        QVERIFY(switched(*item, false));
    }

    void switchingOffWithoutAFolderMakesNone()
    {
        QVERIFY(switched(*loginItem(), false));
        QVERIFY(!exists("config"));
    }

    void switchingOffHidesTheSystemsEntry()
    {
        m_tree->fileWith(systemWide, plain.toStdString());
        const auto item = loginItem();
        QVERIFY(item->isEnabled());
        QVERIFY(switched(*item, false));
        QVERIFY(!item->isEnabled());
        QCOMPARE(content(own), autostartFile(m_tree->text("bin/quillbrook"), true));
        QCOMPARE(content(systemWide), plain);
        QVERIFY(switched(*item, true));
        QVERIFY(item->isEnabled());
    }

    void switchingOffLeavesNothingBesideAHiddenSystemEntry()
    {
        m_tree->fileWith(systemWide, (plain + "Hidden=true\n").toStdString());
        const auto item = loginItem();
        QVERIFY(switched(*item, true));
        QVERIFY(switched(*item, false));
        QVERIFY(!exists(own));
    }

    void linkIsReplacedAndNotFollowed_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }
    void linkIsReplacedAndNotFollowed()
    {
        QFETCH(bool, enabled);
        m_tree->fileWith("precious", (plain + "Hidden=true\n").toStdString());
        m_tree->folder("config/autostart");
        m_tree->link(own, m_tree->path("precious"));
        const auto item = loginItem();
        QVERIFY(!item->isEnabled());
        QVERIFY(switched(*item, enabled));
        QCOMPARE(item->isEnabled(), enabled);
        QCOMPARE(content("precious"), plain + "Hidden=true\n");
        QVERIFY(!isLink(own));
        QCOMPARE(exists(own), enabled);
    }

    void linkToNowhereIsNoEntry()
    {
        m_tree->folder("config/autostart");
        m_tree->link(own, m_tree->path("nowhere"));
        m_tree->fileWith(systemWide, plain.toStdString());
        QVERIFY(loginItem()->isEnabled());
    }

    void pipeIsNotWaitedFor()
    {
        m_tree->folder("config/autostart");
        m_tree->pipe(own);
        m_tree->fileWith(systemWide, plain.toStdString());
        QVERIFY(!loginItem()->isEnabled());
    }

    void folderInItsPlaceIsLeftAlone()
    {
        m_tree->file(own + "/inside", 1);
        const auto item = loginItem();
        QVERIFY(!item->isEnabled());
        for (const bool enabled : { true, false })
            QVERIFY(!outcome(*item, enabled).value_or(u""_s).isEmpty());
        QVERIFY(exists(own + "/inside"));
    }

    void folderThatCanOnlyBeReadIsAFailure()
    {
        m_tree->fileWith(own, plain.toStdString());
        m_tree->permissions("config/autostart", 0555);
        const auto item = loginItem();
        const auto sentence = u"You do not have permission."_s;
        QCOMPARE(outcome(*item, false).value_or(u"done"_s), sentence);
        QCOMPARE(outcome(*item, true).value_or(u"done"_s), sentence);
        m_tree->permissions("config/autostart", 0755);
        QCOMPARE(content(own), plain);
    }

    void fullDiskIsAFailure()
    {
        MemoryFiles files;
        files.isFull = true;
        LinuxLoginItem item({ .reading = files,
            .writing = files,
            .defaults = m_defaults,
            .session = session(),
            .program = m_tree->text("bin/quillbrook") });
        QCOMPARE(outcome(item, true).value_or(u"done"_s), u"No space left on device"_s);
        QCOMPARE(files.writes, 1);
        QVERIFY(!item.isEnabled());
    }

    void programThatNoEntryCanNameIsAFailure_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("relative") << u"quillbrook"_s;
        QTest::newRow("none") << QString();
        QTest::newRow("not text") << u"/a\uFFFD"_s;
    }
    void programThatNoEntryCanNameIsAFailure()
    {
        QFETCH(QString, program);
        LinuxLoginItem item({ .reading = m_reading,
            .writing = m_writing,
            .defaults = m_defaults,
            .session = session(),
            .program = program });
        QVERIFY(!outcome(item, true).value_or(u""_s).isEmpty());
        QVERIFY(!exists("config"));
    }

    void imageIsStartedInThePlaceOfWhatItHolds_data()
    {
        QTest::addColumn<QString>("image");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("program");
        const auto file = u"/tmp/.mount_a/usr/bin/quillbrook"_s;
        const auto image = u"/home/someone/Quillbrook.AppImage"_s;
        QTest::newRow("no image") << QString() << QString() << file;
        QTest::newRow("its own image") << image << u"/tmp/.mount_a"_s << image;
        QTest::newRow("another program's image") << image << u"/tmp/.mount_b"_s << file;
        QTest::newRow("a folder that begins like it") << image << u"/tmp/.mount"_s << file;
        QTest::newRow("no folder") << image << QString() << file;
        QTest::newRow("relative") << u"Quillbrook.AppImage"_s << u"/tmp/.mount_a"_s << file;
    }
    void imageIsStartedInThePlaceOfWhatItHolds()
    {
        QFETCH(QString, image);
        QFETCH(QString, folder);
        QProcessEnvironment environment;
        environment.insert(u"APPIMAGE"_s, image);
        environment.insert(u"APPDIR"_s, folder);
        QTEST(LinuxLoginItem::programToStart(environment, u"/tmp/.mount_a/usr/bin/quillbrook"_s), "program");
    }

    void sandboxAsksThePortal_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }
    void sandboxAsksThePortal()
    {
        QFETCH(bool, enabled);
        PrivateBus bus;
        FakePortal portal;
        portal.results = { { u"background"_s, true }, { u"autostart"_s, enabled } };
        QVERIFY(portal.offer(bus.connection()));
        m_defaults.setBoolean(remembered, !enabled);
        const auto item = sandboxed(bus.connection());
        QCOMPARE(item->isEnabled(), !enabled);
        QVERIFY(switched(*item, enabled));
        QCOMPARE(item->isEnabled(), enabled);
        QCOMPARE(m_defaults.boolean(remembered), std::optional(enabled));
        QCOMPARE(portal.calls.size(), 1);
        const auto &call = portal.calls.constFirst();
        QCOMPARE(call.interface, u"org.freedesktop.portal.Background"_s);
        QCOMPARE(call.method, u"RequestBackground"_s);
        QCOMPARE(call.arguments.size(), 2);
        QCOMPARE(call.arguments.constFirst(), QVariant(QString()));
        QCOMPARE(call.options.value(u"autostart"_s), QVariant(enabled));
        QCOMPARE(call.options.value(u"commandline"_s),
            QVariant(QStringList{ u"quillbrook"_s, u"--background"_s }));
        QVERIFY(!call.options.value(u"reason"_s).toString().isEmpty());
        QVERIFY(!exists("config"));
    }

    void portalsAnswerCounts_data()
    {
        QTest::addColumn<FakePortal::Answer>("answer");
        QTest::addColumn<uint>("code");
        QTest::addColumn<QVariantMap>("results");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("succeeds");
        QTest::addColumn<bool>("isEnabled");
        using Answer = FakePortal::Answer;
        const QVariantMap none;
        const QVariantMap starts{ { u"autostart"_s, true } };
        const QVariantMap startsNot{ { u"autostart"_s, false } };
        QTest::newRow("granted in so many words") << Answer::response << 0U << starts << true << true << true;
        QTest::newRow("granted without a word") << Answer::response << 0U << none << true << true << true;
        QTest::newRow("under another handle")
            << Answer::otherHandle << 0U << starts << true << false << false;
        QTest::newRow("granted, but not to start")
            << Answer::response << 0U << startsNot << true << false << false;
        QTest::newRow("cancelled") << Answer::response << 1U << none << true << false << false;
        QTest::newRow("ended") << Answer::response << 2U << none << true << false << false;
        QTest::newRow("cancelled, and does not start")
            << Answer::response << 1U << startsNot << false << false << false;
        QTest::newRow("not to be switched off") << Answer::response << 1U << none << false << false << true;
        QTest::newRow("refused") << Answer::error << 0U << none << true << false << false;
        QTest::newRow("nobody answers") << Answer::handleOnly << 0U << none << true << false << false;
        QTest::newRow("silent") << Answer::none << 0U << none << true << false << false;
    }
    void portalsAnswerCounts()
    {
        QFETCH(FakePortal::Answer, answer);
        QFETCH(uint, code);
        QFETCH(QVariantMap, results);
        QFETCH(bool, asked);
        QFETCH(bool, succeeds);
        PrivateBus bus;
        FakePortal portal;
        portal.answer = answer;
        portal.code = code;
        portal.results = results;
        QVERIFY(portal.offer(bus.connection()));
        m_defaults.setBoolean(remembered, !asked);
        const auto item = sandboxed(bus.connection(), 500ms);
        const auto failure = outcome(*item, asked);
        QCOMPARE(!failure.has_value(), succeeds);
        QVERIFY(succeeds || !failure->isEmpty());
        QTEST(item->isEnabled(), "isEnabled");
    }

    void withoutAPortalNothingIsRemembered()
    {
        PrivateBus bus;
        for (const auto &connection : { bus.connection(), QDBusConnection(u"not connected"_s) }) {
            const auto item = sandboxed(connection);
            QVERIFY(!outcome(*item, true).value_or(u""_s).isEmpty());
            QVERIFY(!item->isEnabled());
            QVERIFY(m_defaults.values.isEmpty());
        }
    }

    void itemMayGoBeforeTheAnswer()
    {
        PrivateBus bus;
        FakePortal portal;
        portal.answer = FakePortal::Answer::handleOnly;
        QVERIFY(portal.offer(bus.connection()));
        auto item = sandboxed(bus.connection());
        const auto future = item->setEnabled(true);
        QTRY_COMPARE(portal.handles.size(), 1);
        item.reset();
        QTRY_VERIFY(future.isFinished());
        QVERIFY(future.isCanceled());
        QTRY_COMPARE(portal.closed.size(), 1);
        QVERIFY(m_defaults.values.isEmpty());
    }

private:
    [[nodiscard]] DesktopSession session() const
    {
        return { .desktops = { u"ubuntu"_s, u"GNOME"_s },
            .configFolder = m_tree->path(m_config),
            .systemConfigFolders = { m_tree->path("etc") },
            .programFolders = { m_tree->text("bin") } };
    }

    [[nodiscard]] std::unique_ptr<LinuxLoginItem> loginItem()
    {
        return std::make_unique<LinuxLoginItem>(LinuxLoginItem::Services{ .reading = m_reading,
                                                    .writing = m_writing,
                                                    .defaults = m_defaults,
                                                    .session = session(),
                                                    .program = m_tree->text("bin/quillbrook") },
            QDBusConnection(u"not connected"_s));
    }

    [[nodiscard]] std::unique_ptr<LinuxLoginItem> sandboxed(
        const QDBusConnection &bus, std::chrono::milliseconds timeout = 10s)
    {
        auto inside = session();
        inside.sandbox = { .kind = Sandbox::Kind::flatpak, .application = u"com.tarnwick.Quillbrook"_s };
        return std::make_unique<LinuxLoginItem>(LinuxLoginItem::Services{ .reading = m_reading,
                                                    .writing = m_writing,
                                                    .defaults = m_defaults,
                                                    .session = inside,
                                                    .program = m_tree->text("bin/quillbrook") },
            bus, timeout);
    }

    /// What went wrong; absent when nothing did.
    [[nodiscard]] static std::optional<QString> outcome(LinuxLoginItem &item, bool enabled)
    {
        const auto future = item.setEnabled(enabled);
        [&future] { QTRY_VERIFY(future.isFinished()); }();
        if (!future.isFinished() || future.isCanceled())
            return QString();
        const auto result = future.result();
        return result ? std::nullopt : std::optional(result.error());
    }

    [[nodiscard]] static bool switched(LinuxLoginItem &item, bool enabled)
    {
        return !outcome(item, enabled).has_value();
    }

    [[nodiscard]] QByteArray content(const std::string &name) const
    {
        QFile file(m_tree->text(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "(none)";
    }
    [[nodiscard]] bool isLink(const std::string &name) const
    {
        return QFileInfo(m_tree->text(name)).isSymLink();
    }
    [[nodiscard]] bool exists(const std::string &name) const
    {
        return isLink(name) || QFileInfo::exists(m_tree->text(name));
    }

    std::unique_ptr<TempTree> m_tree;
    LinuxFileReading m_reading;
    LinuxFileWriting m_writing;
    FakeUserDefaults m_defaults;
    /// Where the session keeps settings, below the tree.
    std::string m_config;
};

QUILLBROOK_SUITE(TestLinuxLoginItem, QCoreApplication, giveUpRoot)
#include "tst_LinuxLoginItem.moc"
