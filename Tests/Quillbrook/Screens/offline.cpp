// The main window, or the panel in the tray, over a made-up machine, for looking at screens that a real one
// shows only now and then:
//
//     quillbrook-offline [ready|scanning|idle|full|gate|sandbox|rules|conversation|thinking|alone]
//     quillbrook-offline panel [allowed|denied|new|off|scanning]
//
// "gate" is a sandbox without a folder, where the gate's button grants one on another volume; in "sandbox"
// one has been granted, and a newer version is out. In "rules" there is something to automate, and to move.
//
// "conversation" is one with a model that offers a removal, "thinking" one that waits, and in "alone" there
// is no model.
//
// With LANGUAGE=eo in the environment everything is said in the made-up language, whose texts are longer.
//
// Nothing of the machine it runs on is read or changed.

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Core/FolderAccess.h"
#include "Screens/Panel/MenuBarPanelState.h"
#include "Screens/Window/MainWindowState.h"
#include "Support/FakeMotionPreference.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>
#include <QTranslator>
#include <QtQml/QQmlExtensionPlugin>

#include <array>
#include <optional>
#include <random>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibi = qint64{ 1024 } * 1024 * 1024;

constexpr std::array folderNames{ "Projects", "renderer", "node_modules", "build", "Music", ".cache",
    "assets", "target", "photos", "notes", "server", "tests" };
constexpr std::array fileNames{ "scene.glb", "model.bin", "video.mp4", "main.o", "libcore.a", "notes.pdf",
    "atlas.png", "dump.sql", "index.html", "archive.zip", "README", "song.flac" };

/// The same home folder every time: some folders deep, with sizes as wide apart as real ones.
class PretendHome
{
public:
    explicit PretendHome(FakeDirectories &directories)
        : m_directories(directories)
    {
        fill("/home/someone", 0);
    }

private:
    void fill(const std::string &path, int depth)
    {
        std::vector<DirectoryRecord> records;
        const auto files = depth == 0 ? 2U : 2 + m_random() % 6;
        for (unsigned i = 0; i < files; ++i)
            records.push_back(
                FakeDirectories::aFile(fileNames.at(m_random() % fileNames.size()), someSize()));
        const auto folders = depth < 5 ? 2 + m_random() % 3 : 0;
        const auto first = m_random();
        for (unsigned i = 0; i < folders; ++i) {
            const auto *name = folderNames.at((first + i) % folderNames.size());
            records.push_back(FakeDirectories::aFolder(name));
            fill(path + '/' + name, depth + 1);
        }
        m_directories.folder(path, std::move(records));
    }

    qint64 someSize()
    {
        std::lognormal_distribution<double> sizes(18, 2);
        return static_cast<qint64>(sizes(m_random));
    }

    FakeDirectories &m_directories;
    std::minstd_rand m_random{ 7 };
};

QList<Finding> pretendFindings()
{
    QList<Finding> findings;
    const std::array<std::pair<const char *, double>, 6> rows{ { { "Downloaded AI models", 18.4 },
        { "Leftovers from building apps", 8.1 }, { "Downloaded Android libraries", 4.6 },
        { "Downloaded code packages", 2.9 }, { "Saved web pages", 1.2 },
        { "Programming tool downloads", 0.625 } } };
    for (const auto &[title, gibibytes] : rows)
        findings.append({ .id = title,
            .rule = { .title = title },
            .bytes = static_cast<qint64>(gibibytes * static_cast<double>(gibi)) });
    return findings;
}

/// A sandbox, a person who always picks the same folder, and a web site that tells of a newer version.
void pretendSandbox(FakeServices &machine)
{
    const QByteArray folder("/Volumes/Backup/a folder with a rather long name/someone");
    machine.home.home = u"/home/someone/.var/app/com.tarnwick.Quillbrook"_s;
    machine.directories.folder(folder.toStdString(), { FakeDirectories::aFile("scene.glb", 4 * gibi) });
    machine.desktop.folderPicker.answer = folder.toStdString();
    machine.desktop.http.answer
        = HttpAnswer{ .status = 200, .body = R"({"version": "2.0.1", "url": "https://updates.test/2.0.1"})" };
}

/// Something at some of the catalogue's places, one that may lie elsewhere, and rules that have fired.
void pretendRules(FakeServices &machine)
{
    const auto place = [&machine](const std::string &parent, const char *name, double gibibytes) {
        const auto folder = "/home/someone/" + parent;
        const auto path = folder + '/' + name;
        machine.directories.folder(folder, { FakeDirectories::aFolder(name) });
        machine.directories.folder(path,
            { FakeDirectories::aFile(
                "content", static_cast<qint64>(gibibytes * static_cast<double>(gibi))) });
        machine.files.entries[path] = { .dates = FileDates{ .lastModified = machine.clock.moment.addDays(-70),
                                            .created = machine.clock.moment.addDays(-220) } };
    };
    machine.directories.folder("/home/someone",
        { FakeDirectories::aFolder(".npm"), FakeDirectories::aFolder(".gradle"),
            FakeDirectories::aFolder("pages"), FakeDirectories::aFolder("media"),
            FakeDirectories::aFolder(".ollama") });
    place(".npm", "_cacache", 2.9);
    place(".gradle", "daemon", 0.3);
    place("pages", "google-chrome", 1.6);
    place("media", "pip", 1.4);
    place(".ollama", "models", 18.4);
    machine.host.facts.catalogue.locations
        = { { u"browser.caches"_s, { { u"pages/google-chrome"_s, u"Chrome"_s } } } };
    machine.host.facts.catalogue.rules
        = { { .rule = { .id = u"media.previews"_s,
                  .title = u"Premiere and After Effects cache"_s,
                  .what = u"Conformed audio and peak files Adobe generates while you edit."_s,
                  .safety = Safety::safe,
                  .paths = { u"media/pip"_s } },
            .locations = { { u"media/pip"_s, u"Adobe"_s } } } };
    const std::string folder = "/home/someone/.local/share/Quillbrook/";
    machine.stored.files[folder + "automation-presets.json"] = R"(["preset.iosupdates"])";
    machine.stored.files[folder + "automation.json"]
        = QByteArray(R"([ROW,{"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445567",)")
              .append(R"("ruleID":"chat.caches","path":"/x","triggerUsedPercent":95,)")
              .append(R"("cadence":"once","enabled":false,"lastFiredAt":735000000,"timesFired":1}])")
              .replace("ROW",
                  R"({"id":"0B9A2C1E-5D3F-4A6B-8C7D-112233445566","ruleID":"xcode.deriveddata","path":"/y",)"
                  R"("triggerUsedPercent":90,"cadence":"everyTime","enabled":true,"lastFiredAt":738000000,"timesFired":3})");
}

/// A machine that works a little, and for some seconds more.
void pretendWork(FakeHostCounters &counters)
{
    static std::minstd_rand random{ 11 };
    static int second = 0;
    ++second;
    const auto busy = 12 + random() % 7 + (second % 60 > 45 ? 30 : 0);
    counters.ticks->user += busy;
    counters.ticks->idle += 100 - busy;
    counters.pages
        = MemoryPages{ .active = counters.installed / 100 * (60 + static_cast<unsigned>(second) / 30),
              .pageBytes = 1 };
}

void pretendProgress(ScanProgress &progress)
{
    progress.setFindings(pretendFindings());
    progress.setDetail(u"Downloaded Android libraries"_s);
    progress.setCounts(u"412,906 files · 61.3 GB"_s);
    progress.setFraction(0.31);
}

/// Applications of some kinds, what one of them left elsewhere, and what others did that are gone.
void pretendApps(FakeHostApplications &applications)
{
    const auto bytes
        = [](double gibibytes) { return static_cast<qint64>(gibibytes * static_cast<double>(gibi)); };
    const auto app = [&](const QString &name, const QString &id, const QString &version, double gibibytes) {
        return InstalledApp{ .app = { .path = "/home/someone/Applications/" + id.toStdString(),
                                 .name = name,
                                 .bundleID = id,
                                 .version = version,
                                 .bytes = bytes(gibibytes) },
            .origin = AppOrigin::appImage,
            .isMeasured = true };
    };
    applications.apps = { app(u"Aurora Studio"_s, u"com.aurora.studio"_s, u"4.2.1"_s, 4.9),
        app(u"Fieldnotes"_s, u"com.fieldnotes"_s, u"2.0"_s, 2.1),
        app(u"Meridian Maps"_s, u"org.meridian.Maps"_s, u"11.3"_s, 1.4),
        app(u"Lantern"_s, u"org.lantern.Lantern"_s, u"0.9.8"_s, 0.8),
        app(u"Tallyho"_s, u"tallyho"_s, u"7.1"_s, 0.5) };
    auto &flatpak = applications.apps[2];
    flatpak.origin = AppOrigin::flatpakOfUser;
    flatpak.originName = u"flathub"_s;
    flatpak.app.fromAppStore = true;
    applications.apps[4].origin = AppOrigin::package;
    applications.apps[4].componentId = u"tallyho.desktop"_s;
    applications.plans[u"com.aurora.studio"_s]
        = { .leftovers = { { .path = "/home/someone/.local/share/com.aurora.studio",
                               .kind = LeftoverKind::supportFiles,
                               .bytes = bytes(1.6) },
                { .path = "/home/someone/.cache/com.aurora.studio",
                    .kind = LeftoverKind::cache,
                    .bytes = bytes(0.3) },
                { .path = "/etc/Aurora Studio",
                    .kind = LeftoverKind::systemWide,
                    .bytes = bytes(0.04),
                    .needsAdministrator = true } } };
    applications.plans[u"tallyho"_s] = {
        .blocked
        = u"Tallyho belongs to the system's packages. Removing it needs an administrator, so Quillbrook leaves it to the software centre."_s
    };
    for (const auto *id : { "org.gone.cool-tool", "com.maker.player" }) {
        FoundOrphan orphan;
        orphan.orphan = { .path = std::string("/home/someone/.config/") + id,
            .bundleID = QString::fromUtf8(id),
            .kind = LeftoverKind::preferences,
            .bytes = bytes(0.7),
            .lastModified = QDateTime(QDate(2023, 9, 1), QTime(), Qt::UTC) };
        orphan.newestInside = QDateTime(QDate(2023, 8, 1), QTime(), Qt::UTC);
        orphan.isInHostPlace = true;
        applications.found.push_back(orphan);
    }
}

/// A model that proposes to remove a phone, and phones to choose from, one of which runs.
void pretendPhones(FakeServices &machine)
{
    const std::string place = "/home/someone/Library/Developer/CoreSimulator/Devices";
    constexpr std::array phones{ std::pair("iPhone 15 Pro · iOS.17.2", 4.1),
        std::pair("iPad Air · iOS.17.2", 3.2), std::pair("iPhone 14 · iOS.16.4", 1.9) };
    for (std::string folder = "/home/someone";
         const auto *name : { "Library", "Developer", "CoreSimulator", "Devices" }) {
        machine.directories.folder(folder, { FakeDirectories::aFolder(name) });
        folder += std::string("/") + name;
    }
    std::vector<DirectoryRecord> records;
    for (const auto &[name, size] : phones) {
        const auto path = place + '/' + name;
        records.push_back(FakeDirectories::aFolder(name));
        machine.directories.folder(path,
            { FakeDirectories::aFile("disk.img", static_cast<qint64>(size * static_cast<double>(gibi))) });
        machine.files.entries[path] = { .dates = FileDates{ .lastModified = machine.clock.moment.addDays(-70),
                                            .created = machine.clock.moment.addDays(-220) } };
    }
    machine.directories.folder(place, records);
    machine.processes.answer = [](const ProcessRunner::Command &) {
        return ProcessRunner::Result{
            .output = "    iPhone 14 (iPhone 14 · iOS.16.4) (Booted) \n", .exited = true, .exitCode = 0
        };
    };
    machine.desktop.languageModel.replies.push_back(
        AdvisorReply{ .answer = u"There are 3 iOS simulators, using 9.2 GB."_s,
            .proposesRemoval = true,
            .groupId = u"simulator.devices"_s });
}

int show(QQmlApplicationEngine &engine, const QString &file)
{
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/"_s + file));
    if (engine.rootObjects().isEmpty())
        return 1;
    qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst())->show();
    return QGuiApplication::exec();
}

int showWindow(FakeServices &machine, const QString &what)
{
    const PretendHome home(machine.directories);
    if (what == u"full"_s || what == u"sandbox"_s)
        machine.volumes.answer = VolumeCapacity{
            .available = 5 * gibi, .availableForImportantUsage = 19 * gibi, .total = 233 * gibi
        };
    if (what == u"gate"_s || what == u"sandbox"_s)
        pretendSandbox(machine);
    if (what == u"sandbox"_s)
        machine.defaults.values.insert(
            u"Quillbrook.homeBookmark"_s, QByteArray::fromStdString(*machine.desktop.folderPicker.answer));
    if (what == u"rules"_s)
        pretendRules(machine);
    std::optional<FolderHold> hold;
    if (what == u"scanning"_s || what == u"idle"_s)
        hold.emplace(machine.directories, "/home/someone");

    pretendApps(machine.applications);
    const bool isConversation = what == u"conversation"_s || what == u"thinking"_s;
    if (isConversation)
        pretendPhones(machine);
    if (what == u"alone"_s)
        machine.desktop.languageModel.present = {};
    AppModel model(machine.services);
    FakeMotionPreference motion;
    Background background(model.services());
    MainWindowState screens(model, background, motion);
    QQmlApplicationEngine engine;
    engine.setInitialProperties({ { u"screens"_s, QVariant::fromValue(&screens) } });
    if (isConversation || what == u"alone"_s)
        screens.content()->setPane(Pane::advisor);
    if (isConversation)
        QObject::connect(&model.scans(), &ScanDriver::finished, &screens, [&screens, &what] {
            screens.advisor().ask(u"Delete one of my test iPhones"_s);
            if (what == u"thinking"_s)
                QTimer::singleShot(500, &screens, [&screens] {
                    screens.advisor().ask(
                        u"And what else could go, if I wanted to have more room for a while?"_s);
                });
        });
    // Before the window's own, which would stay out of most of what the made-up home holds.
    if (what != u"gate"_s)
        model.scans().scan({ .scope = Scope::complete });
    if (what == u"idle"_s)
        QTimer::singleShot(0, &model.scans(), &ScanDriver::cancelScan);
    // The model's own clock tells of a scan that is held every second.
    QTimer pretending;
    QObject::connect(
        &pretending, &QTimer::timeout, [&model] { pretendProgress(model.scans().scanProgress()); });
    if (what == u"scanning"_s)
        pretending.start(50);

    const auto result = show(engine, u"Window/Main.qml"_s);
    if (hold)
        hold->release();
    return result;
}

int showPanel(FakeServices &machine, const QString &what)
{
    const std::string place = "/home/someone/.npm/_cacache";
    machine.directories.folder("/home/someone", { FakeDirectories::aFolder(".npm") });
    machine.directories.folder("/home/someone/.npm", { FakeDirectories::aFolder("_cacache") });
    machine.directories.folder(place, { FakeDirectories::aFile("content", 63 * gibi / 5) });
    machine.files.entries[place] = {};
    if (what == u"denied"_s)
        machine.desktop.notifier.afterRequest = NotificationState::denied;
    if (what == u"new"_s)
        machine.desktop.notifier.afterRequest = NotificationState::notAsked;

    AppModel model(machine.services);
    Background background(machine.services);
    FolderAccess access(machine.services);
    MenuBarPanelState panel(model, background, access);
    model.watch().configureWatcher(background);
    QObject::connect(
        &panel, &MenuBarPanelState::quitRequested, qApp, &QGuiApplication::quit, Qt::QueuedConnection);
    panel.setWatching(what != u"off"_s);
    machine.desktop.utility.run();
    std::optional<FolderHold> hold;
    if (what == u"scanning"_s)
        hold.emplace(machine.directories, "/home/someone");

    QQmlApplicationEngine engine;
    engine.setInitialProperties({ { u"panel"_s, QVariant::fromValue(&panel) } });
    const auto result = show(engine, u"Panel/MenuBarPanel.qml"_s);
    if (hold)
        hold->release();
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const auto arguments = QGuiApplication::arguments();
    const auto what = arguments.value(1, u"ready"_s);
    QTranslator longWords;
    if (qgetenv("LANGUAGE") == "eo" && longWords.load(QStringLiteral(MADE_UP_LANGUAGE)))
        QCoreApplication::installTranslator(&longWords);

    FakeServices machine;
    machine.volumes.answer = VolumeCapacity{
        .available = 48 * gibi + gibi / 5, .availableForImportantUsage = 48 * gibi, .total = 233 * gibi
    };
    machine.counters.installed = static_cast<std::uint64_t>(31 * gibi / 2);
    pretendWork(machine.counters);
    QTimer working;
    QObject::connect(&working, &QTimer::timeout, [&machine] { pretendWork(machine.counters); });
    working.start(1000);
    // Many pictures, of which most lie elsewhere.
    machine.desktop.photos.access = PhotoAccess::granted;
    machine.desktop.photos.assets = MadeAssets::of(4218, 8'044'000, 1344);
    if (what == u"panel"_s)
        return showPanel(machine, arguments.value(2, u"allowed"_s));
    return showWindow(machine, what);
}
