#include "Catalogue/StorageCatalogue.h"
#include "Support/RuleListing.h"
#include "Support/Suite.h"

#include <QRegularExpression>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestStorageCatalogueRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every text, path, class and number against a listing that was written down apart from the code.
    void everyRowIsAsListed_data()
    {
        const auto listed = readRuleListing(QStringLiteral(RULE_LISTING));
        QCOMPARE(listed.size(), size_t(30));
        QCOMPARE(StorageCatalogue::rules().size(), size_t(30));
        QTest::addColumn<int>("row");
        QTest::addColumn<ReclaimRule>("expected");
        for (size_t row = 0; row < listed.size(); ++row)
            QTest::newRow(qPrintable(listed[row].id)) << static_cast<int>(row) << listed[row];
    }
    void everyRowIsAsListed()
    {
        QFETCH(int, row);
        QFETCH(ReclaimRule, expected);
        const auto &rule = StorageCatalogue::rules()[static_cast<size_t>(row)];
        QCOMPARE(rule.id, expected.id);
        QCOMPARE(rule.title, expected.title);
        QCOMPARE(rule.what, expected.what);
        QCOMPARE(rule.regenerates, expected.regenerates);
        QCOMPARE(label(rule.safety), label(expected.safety));
        QCOMPARE(rule.paths, expected.paths);
        QCOMPARE(rule.staleDays, expected.staleDays);
        QVERIFY(rule.emptyContentsOnly);
    }

    void tableNamesFiftyThreeLocations()
    {
        qsizetype count = 0;
        for (const auto &rule : StorageCatalogue::rules())
            count += rule.paths.size();
        QCOMPARE(count, 53);
    }

    void idsAreUniqueDottedLowerCaseWords()
    {
        static const QRegularExpression form(u"^[a-z]+(\\.[a-z]+)*$"_s);
        QSet<QString> ids;
        for (const auto &rule : StorageCatalogue::rules()) {
            QVERIFY2(form.match(rule.id).hasMatch(), qPrintable(rule.id));
            ids.insert(rule.id);
        }
        QCOMPARE(ids.size(), 30);
    }

    void tableIsBuiltOnce() { QCOMPARE(StorageCatalogue::rules().data(), StorageCatalogue::rules().data()); }

    void related_data()
    {
        QTest::addColumn<QStringList>("related");
        QTest::newRow("android.avd") << QStringList{ u"simulator.devices"_s, u"xcode.deriveddata"_s };
        QTest::newRow("simulator.devices") << QStringList{ u"android.avd"_s, u"simulator.caches"_s };
        QTest::newRow("xcode.deriveddata") << QStringList{ u"xcode.archives"_s, u"simulator.devices"_s };
        QTest::newRow("xcode.archives") << QStringList{ u"xcode.deriveddata"_s, u"ios.devicesupport"_s };
        QTest::newRow("gradle.caches") << QStringList{ u"gradle.daemon"_s, u"android.avd"_s };
        QTest::newRow("gradle.daemon") << QStringList{ u"gradle.caches"_s };
        QTest::newRow("caches.devtools") << QStringList{ u"npm.cacache"_s, u"pub.cache"_s };
        QTest::newRow("npm.cacache") << QStringList{ u"caches.devtools"_s };
        QTest::newRow("trash") << QStringList();
        QTest::newRow("ollama.models") << QStringList();
        QTest::newRow("no such rule") << QStringList();
        QTest::newRow("Npm.cacache") << QStringList();
    }
    void related()
    {
        QFETCH(QStringList, related);
        QCOMPARE(StorageCatalogue::related(QString::fromUtf8(QTest::currentDataTag())), related);
    }

    void relatedOfAHostIsAskedAfterTheBuiltInTable()
    {
        const HostCatalogue host{ .related
            = { { u"npm.cacache"_s, { u"trash"_s } }, { u"host.rule"_s, { u"trash"_s } } } };
        QCOMPARE(StorageCatalogue::related(u"npm.cacache"_s, &host), QStringList{ u"caches.devtools"_s });
        QCOMPARE(StorageCatalogue::related(u"host.rule"_s, &host), QStringList{ u"trash"_s });
        QVERIFY(StorageCatalogue::related(u"host.rule"_s).isEmpty());
        QVERIFY(StorageCatalogue::related(u"ollama.models"_s, &host).isEmpty());
    }
};

QUILLBROOK_SUITE(TestStorageCatalogueRules, NoApplication)
#include "tst_StorageCatalogueRules.moc"
