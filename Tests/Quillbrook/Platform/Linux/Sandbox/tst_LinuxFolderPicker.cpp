#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/Linux/Sandbox/LinuxFolderPicker.h"
#include "Support/PrivateBus.h"
#include "Support/Suite.h"
#include "Support/TempTree.h"

#include <QApplication>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>
#include <sys/inotify.h>

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto portalName = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;

const FolderPicker::Request homeRequest{
    .directory = u"/home"_s, .message = u"Select the folder named “someone”"_s, .prompt = u"Allow"_s
};

/// The portal's folder window, which answers when and what the test says.
class FakeChooser : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
    Q_PROPERTY(uint version READ version CONSTANT)

public:
    [[nodiscard]] uint version() const { return presentVersion; }

    uint presentVersion = 3;
    /// Called once the window stands, with its handle.
    std::function<void(const QString &handle)> shown = [](const QString &) {};
    QStringList parents;
    QStringList titles;
    QList<QVariantMap> options;

public Q_SLOTS:
    QDBusObjectPath OpenFile(const QString &parentWindow, const QString &title, const QVariantMap &given)
    {
        parents.append(parentWindow);
        titles.append(title);
        options.append(given);
        auto sender = message().service();
        const auto handle = portalPath + u"/request/"_s + sender.remove(u':').replace(u'.', u'_') + u'/'
            + given.value(u"handle_token"_s).toString();
        QTimer::singleShot(0, this, [this, handle] { shown(handle); });
        return QDBusObjectPath(handle);
    }
};

/// Notices when a window is taken back.
class FakeHandle : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    int closed = 0;

public Q_SLOTS:
    void Close() { ++closed; }
};

} // namespace

class TestLinuxFolderPicker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        m_client = m_bus->connection();
        m_services = m_bus->connection();
        QVERIFY(m_client.isConnected());
        QVERIFY(m_services.isConnected());
        m_portal = std::make_unique<FakeChooser>();
        m_handle = std::make_unique<FakeHandle>();
        m_tree = std::make_unique<TempTree>();
        m_dialogs = 0;
    }

    void cleanup()
    {
        m_look.reset();
        m_bus.reset();
        QVERIFY(!QApplication::activeModalWidget());
    }

    void uriIsReadByteByByte_data()
    {
        QTest::addColumn<QString>("uri");
        QTest::addColumn<QByteArray>("path");
        const auto newRow = [](const char *name, const char *uri, const QByteArray &path) {
            QTest::newRow(name) << QString::fromUtf8(uri) << path;
        };
        newRow("plain", "file:///home/someone", "/home/someone");
        newRow("with a slash at its end", "file:///home/someone/", "/home/someone");
        newRow("root", "file:///", "/");
        newRow("signs", "file:///a%20b%23c%3fd%25e+f", "/a b#c?d%e+f");
        newRow("not UTF-8", "file:///some%FF%fe", "/some\xff\xfe");
        newRow("line feed", "file:///a%0Ab", "/a\nb");
        newRow("beyond ASCII", "file:///gr%C3%B6%C3%9Fe", "/größe");
        newRow("not encoded", "file:///größe", "/größe");
        newRow("this machine by name", "file://localhost/home", "/home");
        newRow("scheme in capitals", "FILE:///home", "/home");
        newRow("half an escape", "file:///home%2", "/home%2");
        newRow("another machine", "file://elsewhere/home", {});
        newRow("another scheme", "smb://elsewhere/home", {});
        newRow("a zero", "file:///home%00/x", {});
        newRow("no path", "file://", {});
        newRow("a bare path", "/home", {});
        newRow("nothing", "", {});
    }

    void uriIsReadByteByByte()
    {
        QFETCH(QString, uri);
        QFETCH(QByteArray, path);
        const auto read = pathOfFileUri(uri);
        QCOMPARE(read.has_value(), !path.isEmpty());
        QCOMPARE(QByteArray::fromStdString(read.value_or(std::string())), path);
    }

    void portalIsAskedForOneFolder()
    {
        offerPortal();
        answerWith({ u"file:///home/some%FF"_s, u"file:///second"_s });
        QVERIFY(picker().pick(homeRequest) == "/home/some\xff");
        QCOMPARE(m_portal->titles, QStringList{ homeRequest.message });
        QCOMPARE(m_portal->parents, QStringList{ QString() });
        auto options = m_portal->options.constFirst();
        QVERIFY(options.take(u"handle_token"_s).isValid());
        const QVariantMap expected{ { u"directory"_s, true }, { u"modal"_s, true },
            { u"accept_label"_s, u"Allow"_s }, { u"current_folder"_s, QByteArray("/home\0", 6) } };
        QCOMPARE(options, expected);
    }

    void withoutAFolderNothingIsPicked_data()
    {
        QTest::addColumn<uint>("code");
        QTest::addColumn<QVariantMap>("results");
        const auto uris = u"uris"_s;
        const QStringList good{ u"file:///home/someone"_s };
        QTest::newRow("cancelled") << 1U << QVariantMap();
        QTest::newRow("cancelled, with a folder") << 1U << QVariantMap{ { uris, good } };
        QTest::newRow("ended in another way") << 2U << QVariantMap{ { uris, good } };
        QTest::newRow("no list") << 0U << QVariantMap();
        QTest::newRow("empty list") << 0U << QVariantMap{ { uris, QStringList() } };
        QTest::newRow("not a list") << 0U << QVariantMap{ { uris, 7 } };
        QTest::newRow("not on this machine") << 0U << QVariantMap{ { uris, QStringList{ u"smb://a/b"_s } } };
    }

    void withoutAFolderNothingIsPicked()
    {
        QFETCH(uint, code);
        QFETCH(QVariantMap, results);
        offerPortal();
        m_portal->shown = [&](const QString &handle) { answer(handle, code, results); };
        QVERIFY(!picker().pick(homeRequest));
        QCOMPARE(m_portal->titles.size(), 1);
    }

    void portalThatVanishesPicksNothing()
    {
        offerPortal();
        m_portal->shown = [this](const QString &) { m_services.unregisterService(portalName); };
        QElapsedTimer watch;
        watch.start();
        QVERIFY(!picker().pick(homeRequest));
        QVERIFY(watch.elapsed() < 30'000);
        QCOMPARE(m_portal->titles.size(), 1);
    }

    void personWhoNeverAnswersIsNotWaitedForEndlessly()
    {
        offerPortal();
        m_portal->shown = [this](const QString &handle) {
            m_services.registerObject(handle, m_handle.get(), QDBusConnection::ExportAllSlots);
        };
        QVERIFY(!picker(true, 300ms).pick(homeRequest));
        QTRY_COMPARE(m_handle->closed, 1);
    }

    void quittingEndsTheQuestion()
    {
        offerPortal();
        m_portal->shown = [this](const QString &handle) {
            m_services.registerObject(handle, m_handle.get(), QDBusConnection::ExportAllSlots);
            QTimer::singleShot(0, this, [] { QCoreApplication::exit(); });
        };
        // Within a loop of the application's own, as in the running program.
        bool isOver = false;
        QTimer::singleShot(0, this, [&] {
            QVERIFY(!picker().pick(homeRequest));
            isOver = true;
        });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(isOver);
        QTRY_COMPARE(m_handle->closed, 1);
    }

    void secondQuestionMeanwhileIsRefused()
    {
        offerPortal();
        auto asking = picker();
        m_portal->shown = [&](const QString &handle) {
            QVERIFY(!asking.pick(homeRequest));
            answer(handle, 0, { { u"uris"_s, QStringList{ u"file:///home/someone"_s } } });
        };
        QVERIFY(asking.pick(homeRequest) == "/home/someone");
        QCOMPARE(m_portal->titles.size(), 1);
    }

    void nextQuestionIsAskedAnew()
    {
        offerPortal();
        auto asking = picker();
        answerWith({}, 1);
        QVERIFY(!asking.pick(homeRequest));
        answerWith({ u"file:///home/someone"_s });
        QVERIFY(asking.pick(homeRequest) == "/home/someone");
        QCOMPARE(m_portal->titles.size(), 2);
    }

    void dialogStandsInForThePortal_data()
    {
        QTest::addColumn<bool>("isSandboxed");
        QTest::addColumn<uint>("version");
        QTest::newRow("no sandbox") << false << 3U;
        QTest::newRow("no portal") << true << 0U;
        QTest::newRow("a portal without folders") << true << 2U;
    }

    void dialogStandsInForThePortal()
    {
        QFETCH(bool, isSandboxed);
        QFETCH(uint, version);
        m_tree->folder("homes/someone");
        m_portal->presentVersion = version;
        if (version > 0)
            offerPortal();
        whenDialogStands([this](QFileDialog &dialog) {
            auto *name = dialog.findChild<QLineEdit *>(u"fileNameEdit"_s);
            name->setText(m_tree->text("homes/someone"));
            static_cast<QDialog &>(dialog).accept();
        });
        auto request = homeRequest;
        request.directory = m_tree->text("homes");
        QVERIFY(picker(isSandboxed).pick(request) == m_tree->path("homes/someone"));
        QCOMPARE(m_dialogs, 1);
        QVERIFY(m_portal->titles.isEmpty());
    }

    void dialogShowsFoldersOnly()
    {
        m_tree->folder("homes/someone");
        whenDialogStands([this](QFileDialog &dialog) {
            dialog.reject();
            checkDialog(dialog);
        });
        auto request = homeRequest;
        request.directory = m_tree->text("homes");
        QVERIFY(!picker(false).pick(request));
        QCOMPARE(m_dialogs, 1);
    }

    void nextDialogDoesNotLookWhereTheLastWasLeft()
    {
        for (const auto *name : { "homes/someone", "left/other" })
            m_tree->folder(name);
        whenDialogStands([this](QFileDialog &dialog) {
            dialog.setDirectory(m_tree->text("left"));
            dialog.reject();
        });
        auto request = homeRequest;
        request.directory = m_tree->text("homes");
        QVERIFY(!picker(false).pick(request));

        const FileDescriptor looks(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        QVERIFY(::inotify_add_watch(looks.number(), m_tree->path("left").c_str(), IN_OPEN) >= 0);
        whenDialogStands([](QFileDialog &dialog) { dialog.reject(); });
        QVERIFY(!picker(false).pick(request));
        QCOMPARE(m_dialogs, 2);
        std::array<char, 4096> told{};
        QCOMPARE(::read(looks.number(), told.data(), told.size()), ssize_t(-1));
    }

private:
    [[nodiscard]] LinuxFolderPicker picker(
        bool isSandboxed = true, std::chrono::milliseconds leisure = 60s) const
    {
        return LinuxFolderPicker(
            { .isSandboxed = isSandboxed, .patience = 10s, .leisure = leisure }, m_client);
    }

    void offerPortal()
    {
        QVERIFY(m_services.registerObject(portalPath, m_portal.get(),
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
        QVERIFY(m_services.registerService(portalName));
    }

    void checkDialog(const QFileDialog &dialog) const
    {
        QCOMPARE(dialog.fileMode(), QFileDialog::Directory);
        QVERIFY(dialog.testOption(QFileDialog::ShowDirsOnly));
        QVERIFY(dialog.testOption(QFileDialog::ReadOnly));
        QVERIFY(!dialog.filter().testFlag(QDir::Hidden));
        QVERIFY(!dialog.filter().testFlag(QDir::Files));
        QCOMPARE(dialog.directory().path(), m_tree->text("homes"));
        QCOMPARE(dialog.windowTitle(), homeRequest.message);
        QCOMPARE(dialog.labelText(QFileDialog::Accept), homeRequest.prompt);
    }

    void answer(const QString &handle, uint code, const QVariantMap &results)
    {
        auto signal = QDBusMessage::createSignal(handle, u"org.freedesktop.portal.Request"_s, u"Response"_s);
        signal << code << results;
        QVERIFY(m_services.send(signal));
    }

    void answerWith(const QStringList &uris, uint code = 0)
    {
        m_portal->shown = [this, uris, code](const QString &handle) {
            answer(handle, code, { { u"uris"_s, uris } });
        };
    }

    /// Does something to Qt's own window once it stands, and notes that it did. A window that stands after
    /// that is closed.
    void whenDialogStands(const std::function<void(QFileDialog &)> &act)
    {
        m_look = std::make_unique<QTimer>();
        connect(m_look.get(), &QTimer::timeout, this, [this, act] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            if (++m_dialogs == 1)
                act(*dialog);
            else
                dialog->reject();
        });
        m_look->start(10ms);
    }

    std::unique_ptr<PrivateBus> m_bus;
    QDBusConnection m_client{ u"not yet"_s };
    QDBusConnection m_services = m_client;
    std::unique_ptr<FakeChooser> m_portal;
    std::unique_ptr<FakeHandle> m_handle;
    std::unique_ptr<TempTree> m_tree;
    std::unique_ptr<QTimer> m_look;
    int m_dialogs = 0;
};

QUILLBROOK_SUITE(TestLinuxFolderPicker, QApplication)
#include "tst_LinuxFolderPicker.moc"
