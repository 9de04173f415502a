// Prints one JSON object about automatic rules: the seconds that `due` takes over 1,000 rules and 400
// findings, those that a tick with nothing due keeps the main thread, and those from choosing the screen,
// with 50 rules and 20 suggestions, to its first painted frame. On the "offscreen" platform the main thread
// paints it.
//
//     RulesOnce

#include "Core/Background.h"
#include "Screens/Window/MainWindowState.h"
#include "Support/FakeMotionPreference.h"
#include "Support/ScannedHome.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/QQmlExtensionPlugin>

#include <chrono>
#include <cstdio>
#include <optional>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int timesAsked = 9;
constexpr int rulesShown = 50;
constexpr int suggestionsShown = 20;

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

QJsonArray timed(auto &&act)
{
    QJsonArray seconds;
    for (int i = 0; i < timesAsked; ++i) {
        const auto start = now();
        act();
        seconds.append(now() - start);
    }
    return seconds;
}

Finding finding(int number)
{
    return { .id = u"finding %1"_s.arg(number),
        .rule = { .id = u"some.rule.%1"_s.arg(number % 40), .title = u"Some rule"_s, .safety = Safety::safe },
        .path = u"/home/someone/.cache/a folder of some depth/and a name %1"_s.arg(number),
        .bytes = AutomationStore::worthAutomating };
}

QJsonObject dueFigures()
{
    FakeKit kit;
    ReclaimReport report;
    for (int i = 0; i < 400; ++i)
        report.findings.append(finding(i));
    AutomationStore store(kit.kitServices, "/rules");
    for (int i = 0; i < 1000; ++i)
        if (!store.add(finding(i * 2 % 800), 90, Cadence::everyTime))
            return {};
    qsizetype due = 0;
    const auto seconds = timed([&] { due = store.due(95, report, AutomationStore::worthClearing).size(); });
    return { { "seconds", seconds }, { "due", due } };
}

// Places of the four built-in presets that are the same everywhere, and of rules that no preset covers.
struct Machine : ScannedHome
{
    Machine()
    {
        for (const auto *place : { ".npm/_cacache", ".gradle/daemon" })
            addPlace(place, 2048);
        for (int i = 0; i < suggestionsShown; ++i) {
            const auto name = u"Videos/cache %1"_s.arg(i);
            host.facts.catalogue.rules.append({ .rule = { .id = u"own.%1"_s.arg(i),
                                                    .title = u"Something of its own"_s,
                                                    .what = u"What it is."_s,
                                                    .safety = Safety::safe,
                                                    .paths = { name } },
                .locations = { { name, u"Place"_s } } });
            addPlace(name.toStdString(), 2048);
        }
        volumes.answer = { .available = 1'000'000, .total = 2'000'000 };
        for (const auto &preset : AutomationPreset::builtIn())
            if (!model.automation().setPreset(preset, true))
                return;
        for (int i = 0; i < rulesShown; ++i)
            if (!model.automation().add(finding(i), 90, Cadence::everyTime))
                return;
    }
};

std::optional<double> paintedSeconds(Machine &machine)
{
    FakeMotionPreference motion;
    Background background(machine.model.services());
    MainWindowState screens(machine.model, background, motion);
    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.setInitialProperties({ { u"screens"_s, QVariant::fromValue(&screens) } });
    engine.load(QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s));
    auto *window = engine.rootObjects().isEmpty()
        ? nullptr
        : qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    if (!window)
        return std::nullopt;
    std::optional<double> chosen;
    std::optional<double> painted;
    QObject::connect(window, &QQuickWindow::frameSwapped, &machine.model, [&] {
        if (!chosen || painted)
            return;
        painted = now() - *chosen;
        QCoreApplication::quit();
    });
    // Once the window has come to rest.
    QTimer::singleShot(2s, &machine.model, [&] {
        chosen = now();
        machine.model.navigation().setRequestedPane(Pane::rules);
    });
    QTimer::singleShot(60s, &machine.model, [] { QCoreApplication::exit(1); });
    QApplication::exec();
    return painted;
}

} // namespace

int main(int count, char **texts)
{
    QApplication application(count, texts);
    QQuickStyle::setStyle(u"Basic"_s);
    Machine machine;
    machine.scan();
    const auto ticks = timed([&] { machine.model.automation().tick(); });
    const auto painted = paintedSeconds(machine);
    if (!painted)
        return 1;
    const QJsonObject output{ { "due", dueFigures() }, { "tick_seconds", ticks },
        { "painted_seconds", *painted }, { "rules", machine.model.automation().store().rules().size() } };
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
