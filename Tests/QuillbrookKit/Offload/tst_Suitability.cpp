#include "Catalogue/HostCatalogue.h"
#include "Catalogue/ReclaimReport.h"
#include "Offload/Suitability.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestSuitability : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBuiltInTableComesFirstAndIdsAreExact_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("reason");
        const auto hot = [](const char *id, const char *reason) {
            QTest::newRow(id) << QString::fromLatin1(id) << QString::fromLatin1(reason);
        };
        const auto *buildPath = "Read on every build. Relocating it slows the build path.";
        const auto *running = "Read and written while running. Relocating risks corruption.";
        const auto *unknown = "Not recognised as cold data, so Quillbrook will not move it.";
        hot("xcode.deriveddata",
            "Xcode writes this constantly during every build. On a slower volume it would make each build "
            "slower, permanently.");
        for (const auto *id : { "gradle.caches", "npm.cacache", "caches.devtools", "pub.cache" })
            hot(id, buildPath);
        for (const auto *id : { "simulator.devices", "docker.data" })
            hot(id, running);
        hot("chrome.profile", "Chrome reads and writes this profile continuously while it runs.");
        hot("coredevice.service", "Managed by Xcode's device services; relocating it breaks pairing.");
        hot("mail.data", "Mail writes to this constantly while it is open.");
        for (const auto *id : { "xcode.archives", "ios.devicesupport", "ollama.models", "android.avd",
                 "photos.library", "host.cold" })
            QTest::newRow(id) << QString::fromLatin1(id) << QString();
        hot("host.hot", "Too warm.");
        for (const auto *id : { "", "anything", "Photos.library", "photos.library ", "host.Cold" })
            hot(id, unknown);
    }

    void theBuiltInTableComesFirstAndIdsAreExact()
    {
        QFETCH(QString, id);
        QFETCH(QString, reason);
        const HostCatalogue host{ .suitability = { { u"photos.library"_s, u"Not asked."_s },
                                      { u"host.cold"_s, std::nullopt }, { u"host.hot"_s, u"Too warm."_s } } };
        const auto verdict = Offload::suitability(id, &host);
        QCOMPARE(verdict.hotReason.value_or(QString()), reason);
        QCOMPARE(verdict.isCold(), reason.isEmpty());
        QVERIFY(!id.startsWith(u"host"_s) || !Offload::suitability(id).isCold());
    }

    void candidatesAreColdLargeAndHere()
    {
        constexpr qint64 hundred = qint64{ 100 } * 1024 * 1024;
        const auto finding = [](const QString &id, qint64 bytes, bool isLink = false) {
            return Finding{ .id = id, .rule = { .id = id }, .bytes = bytes, .redirectedOffVolume = isLink };
        };
        const ReclaimReport report{ .findings
            = { finding(u"mail.data"_s, hundred * 9), finding(u"xcode.archives"_s, hundred + 1),
                finding(u"xcode.archives"_s, hundred), finding(u"xcode.archives"_s, hundred * 9, true),
                finding(u"nobody.knows"_s, hundred * 2) } };
        const auto found = Offload::candidates(report);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().bytes, hundred + 1);
    }
};

QUILLBROOK_SUITE(TestSuitability, QCoreApplication)
#include "tst_Suitability.moc"
