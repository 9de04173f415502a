#pragma once

// For tests of the main window as a person meets it, on a made-up machine: what can be read, pressed and
// reached. Whatever the window warns of fails the test.

#include "Core/AppModel.h"
#include "Core/Background.h"
#include "Screens/Window/MainWindowState.h"
#include "Support/FakeMotionPreference.h"
#include "Support/FakeServices.h"
#include "Support/FolderHold.h"
#include "Support/QuickItems.h"

#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTest>

#include <memory>

namespace Quillbrook {

class MainWindowSuite : public QObject
{
protected:
    using Role = QAccessible::Role;

    struct Machine : FakeServices
    {
        Machine() { directories.folder("/home/someone", { FakeDirectories::aFile("a", 4096) }); }

        FakeMotionPreference motion;
        FolderHold hold{ directories, "/home/someone" };
    };

    void setUp()
    {
        m_warnings.clear();
        s_warnings = &m_warnings;
        qInstallMessageHandler(keepWarnings);
        QAccessible::setActive(true);

        m_machine = std::make_unique<Machine>();
        m_machine->volumes.answer = VolumeCapacity{ .available = 250, .total = 1000 };
        open();
    }

    void tearDown()
    {
        close();
        m_machine.reset();
        qInstallMessageHandler(nullptr);
        s_warnings = nullptr;
        QVERIFY2(m_warnings.isEmpty(), qPrintable(m_warnings.join(QLatin1Char('\n'))));
    }

    [[nodiscard]] QQuickItem *item(Role role, const QString &name) const
    {
        return findAccessible(*m_window->contentItem(), role, name);
    }
    [[nodiscard]] bool shows(const QString &text) const { return item(Role::StaticText, text) != nullptr; }
    [[nodiscard]] bool showsTheScan() const
    {
        const auto title = m_screens->scanning()->title();
        return shows(title) && item(Role::ProgressBar, title);
    }
    [[nodiscard]] Pane pane() const { return m_screens->content()->pane(); }

    void open()
    {
        m_model = std::make_unique<AppModel>(m_machine->services);
        m_background = std::make_unique<Background>(m_machine->services);
        m_screens = std::make_unique<MainWindowState>(*m_model, *m_background, m_machine->motion);
        m_engine = std::make_unique<QQmlApplicationEngine>();
        m_engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
        m_engine->setInitialProperties(
            { { QStringLiteral("screens"), QVariant::fromValue(m_screens.get()) } });
        m_engine->load(QUrl(QStringLiteral("qrc:/qt/qml/Quillbrook/Screens/Window/Main.qml")));
        m_window = qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0));
        QVERIFY(m_window);
        m_window->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
    }

    void close()
    {
        m_machine->hold.release();
        m_engine.reset();
        m_screens.reset();
        m_model.reset();
        m_background.reset();
    }

    // As a start in a sandbox, where `granted` was handed over before.
    void openInSandbox(const QByteArray &granted = {})
    {
        close();
        m_machine->home.home = QStringLiteral("/home/someone/.var/app/com.tarnwick.Quillbrook");
        m_machine->desktop.folderGrants.startupDiskPrefix = "/home/";
        if (!granted.isEmpty())
            m_machine->defaults.values.insert(QStringLiteral("Quillbrook.homeBookmark"), granted);
        open();
    }

    void finishScan()
    {
        m_machine->hold.release();
        QTRY_VERIFY(m_model->scans().phase().kind == Phase::Kind::ready);
    }

    void nothingIsCut(const QSize &size) const
    {
        m_window->resize(size);
        QTRY_COMPARE(m_window->contentItem()->width(), qreal(size.width()));
        const QRectF whole(QPointF(), size);
        for (auto *part : visibleItemsBelow(*m_window->contentItem())) {
            if (accessibleName(part).isEmpty())
                continue;
            const auto place = part->mapRectToScene(part->boundingRect());
            QVERIFY2(whole.contains(place), qPrintable(accessibleName(part)));
            QVERIFY2(!part->property("truncated").toBool(), qPrintable(accessibleName(part)));
        }
    }

    static void keepWarnings(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
    {
        if (type == QtWarningMsg && s_warnings)
            s_warnings->append(message);
    }

    static inline QStringList *s_warnings = nullptr;
    QStringList m_warnings;
    std::unique_ptr<Machine> m_machine;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<Background> m_background;
    std::unique_ptr<MainWindowState> m_screens;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow *m_window = nullptr;
};

} // namespace Quillbrook
