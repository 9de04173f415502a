#include "Platform/Linux/Opening/LinuxLinkOpener.h"
#include "Support/Suite.h"

#include <QDesktopServices>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

class FakeBrowser : public QObject
{
    Q_OBJECT

public:
    QStringList opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url.toString(QUrl::FullyEncoded)); }
};

} // namespace

class TestLinuxLinkOpener : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyWebAddressesAreOpened_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("isOpened");
        QTest::newRow("https") << u"https://example.org/a%20b?c=d#e"_s << true;
        QTest::newRow("http") << u"http://example.org/"_s << false;
        QTest::newRow("capitals") << u"HTTPS://example.org/"_s << true;
        QTest::newRow("file") << u"file:///usr/bin/true"_s << false;
        QTest::newRow("a path") << u"/usr/bin/true"_s << false;
        QTest::newRow("script") << u"javascript:alert(1)"_s << false;
        QTest::newRow("mail") << u"mailto:someone@example.org"_s << false;
        QTest::newRow("another program's scheme") << u"steam://run/1"_s << false;
        QTest::newRow("nearly https") << u"httpsx://example.org/"_s << false;
        QTest::newRow("no host") << u"https:///etc/passwd"_s << false;
        QTest::newRow("no scheme") << u"//example.org/"_s << false;
        QTest::newRow("not an address") << u"https://exa mple.org:port/"_s << false;
        QTest::newRow("an application") << u"appstream:org.one.App"_s << true;
        QTest::newRow("an application as an option") << u"appstream:--help"_s << false;
        QTest::newRow("a computer's application") << u"appstream://org.one.App"_s << false;
        QTest::newRow("empty") << QString() << false;
    }
    void onlyWebAddressesAreOpened()
    {
        QFETCH(QString, url);
        QFETCH(bool, isOpened);
        FakeBrowser browser;
        // All of the schemes, so that nothing of the machine is ever started.
        const QStringList schemes{ u"https"_s, u"http"_s, u"file"_s, u"javascript"_s, u"mailto"_s, u"steam"_s,
            u"httpsx"_s, u"appstream"_s, QString() };
        for (const auto &scheme : schemes)
            QDesktopServices::setUrlHandler(scheme, &browser, "open");
        LinuxLinkOpener().open(QUrl(url));
        for (const auto &scheme : schemes)
            QDesktopServices::unsetUrlHandler(scheme);
        QCOMPARE(browser.opened.size(), isOpened ? 1 : 0);
        if (isOpened)
            QCOMPARE(browser.opened.constFirst(), QUrl(url).toString(QUrl::FullyEncoded));
    }
};

QUILLBROOK_SUITE(TestLinuxLinkOpener, QGuiApplication)
#include "tst_LinuxLinkOpener.moc"
