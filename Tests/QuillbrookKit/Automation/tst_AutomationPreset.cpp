#include "Automation/AutomationPreset.h"
#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/StorageCatalogue.h"
#include "Support/Suite.h"

#include <QSet>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

class TestAutomationPreset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fourAreBuiltIn()
    {
        QStringList rows;
        for (const auto &preset : AutomationPreset::builtIn()) {
            QCOMPARE(preset.triggerUsedPercent, 90.0);
            rows.append(preset.id + u": "_s + preset.title + u": "_s + preset.ruleIds.join(u' '));
        }
        QCOMPARE(rows,
            QStringList({ u"preset.xcode: Keep Xcode in check: xcode.deriveddata xcode.doccache simulator.caches"_s,
                u"preset.buildtools: Keep build tools in check: gradle.daemon caches.devtools npm.cacache"_s,
                u"preset.browsers: Keep browser caches down: browser.caches browser.serviceworkers chat.caches"_s,
                u"preset.iosupdates: Old iOS software updates: ios.updates"_s }));
    }

    void theHostAddsRulesAndPresets()
    {
        const HostCatalogue host{ .presets = { { u"preset.browsers"_s, { u"browser.more"_s } } },
            .ownPresets = { { .id = u"preset.own"_s, .title = u"Own"_s, .ruleIds = { u"own.rule"_s } } } };
        const auto presets = AutomationPreset::all(host);
        QCOMPARE(presets.size(), 5);
        QCOMPARE(presets.at(1), AutomationPreset::builtIn().at(1));
        QCOMPARE(presets.at(2).ruleIds.last(), u"browser.more"_s);
        QCOMPARE(presets.last(),
            (AutomationPreset{ .id = u"preset.own"_s,
                .title = u"Own"_s,
                .ruleIds = { u"own.rule"_s },
                .triggerUsedPercent = 90.0 }));
    }

    // Switching one off removes by the rules' ids, so that no id may stand in two.
    void everyRuleIsSafeAndStandsInOnePreset()
    {
        const auto host = LinuxCatalogue::catalogue({}, u"/home/someone"_s);
        const auto presets = AutomationPreset::all(host);
        QVERIFY(presets.size() > AutomationPreset::builtIn().size());
        QSet<QString> seen;
        for (const auto &preset : presets) {
            QVERIFY2(!preset.ruleIds.isEmpty() && !seen.contains(preset.id), qPrintable(preset.id));
            QVERIFY2(!preset.title.isEmpty() && preset.blurb.endsWith(u'.'), qPrintable(preset.id));
            seen.insert(preset.id);
            for (const auto &id : preset.ruleIds) {
                const auto *rule = StorageCatalogue::rule(id, &host);
                QVERIFY2(rule && rule->safety == Safety::safe, qPrintable(id));
                QVERIFY2(!seen.contains(id), qPrintable(id));
                seen.insert(id);
            }
        }
    }
};

QUILLBROOK_SUITE(TestAutomationPreset, QCoreApplication)
#include "tst_AutomationPreset.moc"
