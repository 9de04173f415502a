#include "AppDelegate.h"
#include "Automation/UpdateCheck.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Core/Translation.h"
#include "Platform/AppInstance.h"
#include "Platform/AppServices.h"
#include "Platform/Machine.h"
#include "Platform/QuitRequests.h"
#include "Platform/TrayItem.h"
#include "Screens/Panel/MenuBarPanelState.h"
#include "Screens/Window/MainWindowState.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QIcon>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QtQml/QQmlExtensionPlugin>

#include <chrono>
#include <cstdlib>

Q_IMPORT_QML_PLUGIN(QuillbrookPlugin)

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

AppServices servicesOf(Machine &machine)
{
    auto services = machine.services();
    services.version = QStringLiteral(QUILLBROOK_VERSION);
    services.updateFeed = UpdateCheck::feed();
    return services;
}

// A drive that does not answer holds whoever asks it, and a thread can't be taken from it. The process can.
void endThoughADriveHoldsIt(AppModel &model, int code)
{
    using namespace std::chrono_literals;
    constexpr auto patience = 2s;
    if (model.offloads().endsWithin(QDeadlineTimer(patience)))
        return;
    // The books of what was removed are closed first. Settings that were changed last are written by an
    // event.
    model.removals().wait();
    QCoreApplication::sendPostedEvents();
    std::_Exit(code);
}

AppDelegate::Windows windows(MainWindowState &screens, MenuBarPanelState &panel)
{
    return { .main = QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml"_s),
        .mainProperties = { { u"screens"_s, QVariant::fromValue(&screens) } },
        .panel = QUrl(u"qrc:/qt/qml/Quillbrook/Screens/Panel/MenuBarPanel.qml"_s),
        .panelProperties = { { u"panel"_s, QVariant::fromValue(&panel) } },
        .asksBeforeQuitting = [&screens] { return screens.quit()->ask(); } };
}

} // namespace

int main(int argc, char **argv)
{
    Machine::prepareProcess();
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(u"Quillbrook"_s);
    QGuiApplication::setDesktopFileName(u"com.tarnwick.Quillbrook"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/icons/com.tarnwick.Quillbrook-256.png"_s));
    QQuickStyle::setStyle(u"Basic"_s);
    const Translation translation;

    const auto machine = Machine::ofThisSystem();
    // Before anything that writes: the stores have one writer.
    const auto start = AppDelegate::startOf(QApplication::arguments());
    auto &instance = machine->instance();
    if (!instance.claim(start))
        return 0;

    AppModel model(servicesOf(*machine));
    Background background(model.services());
    MainWindowState screens(model, background, machine->motion());
    MenuBarPanelState panel(model, background, screens.access());
    auto &tray = machine->tray();

    QQmlEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    AppDelegate delegate(
        { .model = model, .background = background, .tray = tray, .instance = instance, .engine = engine },
        windows(screens, panel));
    QObject::connect(&panel, &MenuBarPanelState::openRequested, &delegate,
        [&] { delegate.openWindow(tray.takeActivationToken()); });
    QObject::connect(&panel, &MenuBarPanelState::quitRequested, &delegate, &AppDelegate::quit);
    QObject::connect(screens.quit(), &QuitState::quitChosen, &delegate, &AppDelegate::quitNow);
    // A session that ends waits for nobody.
    QObject::connect(&machine->quitRequests(), &QuitRequests::asked, &delegate, &AppDelegate::quitNow);
    const int code = delegate.start(start) ? QApplication::exec() : 1;
    endThoughADriveHoldsIt(model, code);
    return code;
}
