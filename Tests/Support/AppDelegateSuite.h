#pragma once

// For tests of the windows and the tray's item together, over a made-up machine: a delegate with small
// windows of the test's own.

#include "AppDelegate.h"
#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Support/FakeAppInstance.h"
#include "Support/FakeServices.h"
#include "Support/FakeTrayItem.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>

namespace Quillbrook {

class AppDelegateSuite : public QObject
{
protected:
    void setUp()
    {
        m_copyPatience = std::chrono::minutes(1);
        m_folder = std::make_unique<QTemporaryDir>();
        m_machine = std::make_unique<FakeServices>();
        m_machine->volumes.answer = VolumeCapacity{ .available = 250, .total = 1000 };
        m_model = std::make_unique<AppModel>(m_machine->services);
        m_background = std::make_unique<Background>(m_machine->services);
        m_tray = std::make_unique<FakeTrayItem>();
        m_instance = std::make_unique<FakeAppInstance>();
        m_engine = std::make_unique<QQmlEngine>();
        m_windows = { .main = file(QStringLiteral("Main.qml"),
                          "import QtQuick\nWindow { required property string name; title: name\n"
                          "width: 300; height: 200; visible: true }\n"),
            .mainProperties = { { QStringLiteral("name"), QStringLiteral("main window") } },
            .panel = file(QStringLiteral("Panel.qml"),
                "import QtQuick\nWindow { required property string name; title: name\n"
                "flags: Qt.Tool | Qt.FramelessWindowHint; width: 100; height: 150 }\n"),
            .panelProperties = { { QStringLiteral("name"), QStringLiteral("panel") } } };
        make(m_windows);
    }

    void tearDown()
    {
        m_delegate.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_engine.reset();
        m_background.reset();
        m_model.reset();
        QCOMPARE(windowCount(), 0);
    }

    static constexpr auto withWindow = AppInstance::Start::withWindow;
    static constexpr auto inBackground = AppInstance::Start::inBackground;

    [[nodiscard]] QUrl file(const QString &name, const QByteArray &text)
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return {};
        return QUrl::fromLocalFile(file.fileName());
    }

    void make(const AppDelegate::Windows &windows)
    {
        m_delegate.reset();
        m_delegate = std::make_unique<AppDelegate>(AppDelegate::Services{ .model = *m_model,
                                                       .background = *m_background,
                                                       .tray = *m_tray,
                                                       .instance = *m_instance,
                                                       .engine = *m_engine,
                                                       .copyPatience = m_copyPatience },
            windows);
    }

    void press(const std::optional<QPoint> &place = {}) { Q_EMIT m_tray->activated(place); }
    [[nodiscard]] qsizetype windowCount() const { return QGuiApplication::allWindows().size(); }

    std::chrono::milliseconds m_copyPatience = std::chrono::minutes(1);
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakeServices> m_machine;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<Background> m_background;
    std::unique_ptr<FakeTrayItem> m_tray;
    std::unique_ptr<FakeAppInstance> m_instance;
    std::unique_ptr<QQmlEngine> m_engine;
    AppDelegate::Windows m_windows;
    std::unique_ptr<AppDelegate> m_delegate;
};

} // namespace Quillbrook
