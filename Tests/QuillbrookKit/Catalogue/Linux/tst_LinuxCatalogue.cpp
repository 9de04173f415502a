#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/Linux/LinuxQuietScope.h"
#include "Catalogue/StorageCatalogue.h"
#include "Support/RuleListing.h"
#include "Support/Suite.h"

#include <QRegularExpression>
#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr auto home = "/home/ann";

HostCatalogue catalogueWith(const LinuxUserFolders::Folders &folders = {})
{
    return LinuxCatalogue::catalogue(folders, QString::fromLatin1(home));
}

struct Place
{
    QString ruleId;
    QString path;
    Safety safety;
};

std::vector<Place> allPlaces(const HostCatalogue &host)
{
    std::vector<Place> places;
    for (const auto &rule : StorageCatalogue::rules()) {
        for (const auto &path : rule.paths)
            places.push_back({ rule.id, path, rule.safety });
        for (const auto &row : host.locations)
            for (const auto &location : row.locations)
                if (row.ruleId == rule.id)
                    places.push_back({ rule.id, location.path, rule.safety });
    }
    for (const auto &row : host.rules) {
        for (const auto &path : row.rule.paths)
            places.push_back({ row.rule.id, path, row.rule.safety });
        for (const auto &extra : host.locations)
            for (const auto &location : extra.locations)
                if (extra.ruleId == row.rule.id)
                    places.push_back({ row.rule.id, location.path, row.rule.safety });
    }
    return places;
}

QSet<QString> allRuleIds(const HostCatalogue &host)
{
    QSet<QString> ids;
    for (const auto &rule : StorageCatalogue::rules())
        ids.insert(rule.id);
    for (const auto &row : host.rules)
        ids.insert(row.rule.id);
    return ids;
}

const ReclaimRule *ruleOf(const HostCatalogue &host, const QString &id)
{
    for (const auto &row : host.rules)
        if (row.rule.id == id)
            return &row.rule;
    return nullptr;
}

} // namespace

class TestLinuxCatalogue : public QObject
{
    Q_OBJECT

private:
    const HostCatalogue m_host = catalogueWith();

private Q_SLOTS:
    // Every text, path, class and number against a listing that was written down apart from the code.
    void everyRuleIsAsListed_data()
    {
        const auto listed = readRuleListing(QStringLiteral(RULE_LISTING));
        QCOMPARE(m_host.rules.size(), qsizetype(listed.size()));
        QTest::addColumn<int>("row");
        QTest::addColumn<ReclaimRule>("expected");
        for (size_t row = 0; row < listed.size(); ++row)
            QTest::newRow(qPrintable(listed[row].id)) << static_cast<int>(row) << listed[row];
    }
    void everyRuleIsAsListed()
    {
        QFETCH(int, row);
        QFETCH(ReclaimRule, expected);
        const auto &rule = m_host.rules[row].rule;
        QCOMPARE(rule.id, expected.id);
        QCOMPARE(rule.title, expected.title);
        QCOMPARE(rule.what, expected.what);
        QCOMPARE(rule.regenerates, expected.regenerates);
        QCOMPARE(label(rule.safety), label(expected.safety));
        QCOMPARE(rule.paths, expected.paths);
        QCOMPARE(rule.staleDays, expected.staleDays);
        QVERIFY(rule.emptyContentsOnly);
    }

    void everyPlaceOfABuiltInRuleIsAsListed()
    {
        const auto listed = readRuleListing(QStringLiteral(LOCATION_LISTING));
        QCOMPARE(m_host.locations.size(), qsizetype(listed.size()));
        for (size_t row = 0; row < listed.size(); ++row) {
            const auto &actual = m_host.locations[static_cast<qsizetype>(row)];
            QCOMPARE(actual.ruleId, listed[row].id);
            QStringList paths;
            for (const auto &location : actual.locations)
                paths.append(location.path);
            QCOMPARE(paths, listed[row].paths);
        }
    }

    void rulesPathsAreThoseOfItsLocations()
    {
        for (const auto &row : m_host.rules) {
            QCOMPARE(row.rule.paths.size(), row.locations.size());
            for (qsizetype i = 0; i < row.locations.size(); ++i)
                QCOMPARE(row.rule.paths[i], row.locations[i].path);
        }
    }

    void idsAreUniqueAmongAllRules()
    {
        static const QRegularExpression form(u"^[a-z]+(\\.[a-z]+)+$"_s);
        for (const auto &row : m_host.rules)
            QVERIFY2(form.match(row.rule.id).hasMatch(), qPrintable(row.rule.id));
        QCOMPARE(allRuleIds(m_host).size(), 30 + m_host.rules.size());
    }

    void placesAreRelativeAndLiteral()
    {
        static const QRegularExpression odd(u"^/|/$|//|(^|/)\\.{1,2}(/|$)|[*?~$]"_s);
        for (const auto &place : allPlaces(m_host))
            QVERIFY2(!odd.match(place.path).hasMatch(), qPrintable(place.path));
    }

    // No total counts a byte twice: the only nesting is of what may be cleared in what is only shown.
    void noPlaceStandsTwiceOrInsideAnother()
    {
        const auto places = allPlaces(m_host);
        int nested = 0;
        for (const auto &inner : places)
            for (const auto &outer : places) {
                if (&inner == &outer)
                    continue;
                const auto message = (inner.path + u" in "_s + outer.path).toUtf8();
                QVERIFY2(inner.path != outer.path, message);
                if (!inner.path.startsWith(outer.path + u'/'))
                    continue;
                ++nested;
                QVERIFY2(inner.safety != Safety::reportOnly && outer.safety == Safety::reportOnly, message);
            }
        QVERIFY(nested > 20);
    }

    void labelsTellThePlacesOfOneRuleApart()
    {
        QHash<QString, QSet<QString>> labels;
        QHash<QString, int> counts;
        const auto note = [&](const QString &ruleId, const HostLocation &location) {
            QVERIFY2(!location.label.isEmpty() && location.label == location.label.trimmed(),
                qPrintable(location.path));
            labels[ruleId].insert(location.label);
            ++counts[ruleId];
        };
        for (const auto &row : m_host.locations)
            for (const auto &location : row.locations)
                note(row.ruleId, location);
        for (const auto &row : m_host.rules)
            for (const auto &location : row.locations)
                note(row.rule.id, location);
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            QVERIFY2(labels.value(it.key()).size() == it.value(), qPrintable(it.key()));
    }

    void sandboxedPlacesSaySo()
    {
        for (const auto &row : m_host.rules)
            for (const auto &[path, label, application] : row.locations)
                if (row.rule.id != u"sandbox.data") {
                    QVERIFY2(path.startsWith(u".var/app/") == label.contains(u"(Flatpak)"), qPrintable(path));
                    QVERIFY2(path.startsWith(u"snap/") == label.contains(u"(Snap)"), qPrintable(path));
                }
    }

    void placesAreOfRulesThatExist()
    {
        for (const auto &row : m_host.locations)
            QVERIFY2(allRuleIds(m_host).contains(row.ruleId), qPrintable(row.ruleId));
    }

    void relatedRulesExistAndMayBeCleared()
    {
        const auto ids = allRuleIds(m_host);
        for (const auto &row : m_host.related) {
            QVERIFY2(ruleOf(m_host, row.id), qPrintable(row.id));
            for (const auto &id : row.ruleIds) {
                QVERIFY2(ids.contains(id) && id != row.id, qPrintable(id));
                QVERIFY2(
                    !ruleOf(m_host, id) || ruleOf(m_host, id)->safety != Safety::reportOnly, qPrintable(id));
            }
            QCOMPARE(StorageCatalogue::related(row.id, &m_host), row.ruleIds);
        }
    }

    void presetsTakeInSafeRulesOnly()
    {
        QVERIFY(!m_host.presets.isEmpty());
        for (const auto &row : m_host.presets)
            for (const auto &id : row.ruleIds)
                QVERIFY2(ruleOf(m_host, id) && ruleOf(m_host, id)->safety == Safety::safe, qPrintable(id));
    }

    void coldRulesAreThree()
    {
        QStringList cold;
        for (const auto &row : m_host.suitability) {
            QVERIFY2(ruleOf(m_host, row.ruleId), qPrintable(row.ruleId));
            if (!row.hotReason)
                cold.append(row.ruleId);
        }
        QCOMPARE(cold, QStringList({ u"ai.huggingface"_s, u"ai.models"_s, u"videos.folder"_s }));
    }

    void itemisationsAreOfTheirRulesPlaces()
    {
        for (const auto &row : m_host.itemisations) {
            const auto *rule = ruleOf(m_host, row.ruleId);
            QVERIFY2(rule && !row.detail.isEmpty(), qPrintable(row.ruleId));
            QCOMPARE(row.blockedReason.has_value(), rule->safety == Safety::reportOnly);
            for (const auto &path : row.paths)
                QVERIFY2(rule->paths.contains(path), qPrintable(path));
            QVERIFY2(StorageCatalogue::supportsItems(row.ruleId, &m_host), qPrintable(row.ruleId));
        }
        QVERIFY(!StorageCatalogue::supportsItems(u"containers.storage"_s, &m_host));
    }

    // They cost more than time: what they say about it is what a person decides by.
    void rowsThatHoldMoreThanCopiesSaySo_data()
    {
        QTest::addColumn<QString>("words");
        QTest::newRow("debug.symbols") << u"as long as the server still has them"_s;
        QTest::newRow("ai.compiled") << u"close it first"_s;
        QTest::newRow("python.envs") << u"scripts of your own"_s;
        QTest::newRow("games.runners") << u"a version you built yourself"_s;
        QTest::newRow("java.packages") << u"exist nowhere else"_s;
        QTest::newRow("backup.caches") << u"starts over"_s;
        QTest::newRow("ai.huggingface") << u"worked out from a data set"_s;
        QTest::newRow("language.packages") << u"Overrides.toml"_s;
    }
    void rowsThatHoldMoreThanCopiesSaySo()
    {
        QFETCH(QString, words);
        const auto *rule = ruleOf(m_host, QString::fromUtf8(QTest::currentDataTag()));
        QVERIFY(rule);
        QVERIFY(rule->safety == Safety::careful);
        QVERIFY2(rule->regenerates.contains(words), qPrintable(rule->regenerates));
    }

    // The first look reaches everything in the tables but what is the user's own.
    void everyPlaceIsEitherOpenToTheQuietScopeOrProtected()
    {
        const auto homeFolder = QString::fromLatin1(home);
        auto open = FastScanner::quietAllowlist(homeFolder).value(homeFolder);
        open.unite(LinuxQuietScope::allowlist(homeFolder).value(homeFolder));
        const auto closed = LinuxQuietScope::protectedPaths(homeFolder, {});
        int protectedPlaces = 0;
        for (const auto &place : allPlaces(m_host)) {
            if (place.path.startsWith(u"Library/"))
                continue;
            const bool isProtected = closed.contains(homeFolder + u'/' + place.path);
            protectedPlaces += isProtected;
            QVERIFY2(isProtected != open.contains(place.path.section(u'/', 0, 0)), qPrintable(place.path));
            QVERIFY2(!isProtected || place.safety == Safety::reportOnly, qPrintable(place.path));
        }
        QVERIFY(protectedPlaces > 10);
    }

    void placesOfKeysAreProtected()
    {
        const auto paths = LinuxQuietScope::protectedPaths(QString::fromLatin1(home), {});
        for (const auto *name : { ".ssh", ".gnupg", ".local/share/keyrings", ".password-store", ".kube" })
            QVERIFY2(paths.contains(u"/home/ann/"_s + QString::fromLatin1(name)), name);
    }

    void usersOwnFoldersAreProtectedUnderBothNames()
    {
        const auto paths = LinuxQuietScope::protectedPaths(
            QString::fromLatin1(home), { .pictures = u"/home/ann/Bilder"_s, .videos = u"/data/Filme"_s });
        for (const auto *path : { "/home/ann/Pictures", "/home/ann/Bilder", "/home/ann/Videos", "/data/Filme",
                 "/home/ann/Documents" })
            QVERIFY2(paths.contains(QString::fromLatin1(path)), path);
    }

    void foldersUnderTheirLocalNamesAreLocations()
    {
        const auto host = catalogueWith({ .documents = u"/home/ann/Dokumente"_s,
            .downloads = u"/home/ann/Herunter geladen"_s,
            .pictures = u"/home/ann/Bilder"_s,
            .videos = u"/home/ann/Filme"_s });
        const auto added = host.locations.sliced(m_host.locations.size());
        const QList<HostRuleLocations> expected{ { u"downloads.folder"_s,
                                                     { { u"Herunter geladen"_s, u"Herunter geladen"_s } } },
            { u"photos.library"_s, { { u"Bilder"_s, u"Bilder"_s } } },
            { u"videos.folder"_s, { { u"Filme"_s, u"Filme"_s } } } };
        QCOMPARE(added, expected);
        QCOMPARE(host.rules, m_host.rules);
    }

    void folderThatWouldCountTwiceIsNoLocation_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("a location already") << u"/home/ann/Pictures"_s;
        QTest::newRow("inside one") << u"/home/ann/Pictures/Screens"_s;
        QTest::newRow("around one that is only shown") << u"/home/ann/.local/share"_s;
        QTest::newRow("inside one that may be cleared") << u"/home/ann/.cache/pip/pictures"_s;
        QTest::newRow("outside home") << u"/data/Bilder"_s;
        QTest::newRow("a name that begins like home") << u"/home/anna/Bilder"_s;
    }
    void folderThatWouldCountTwiceIsNoLocation()
    {
        QFETCH(QString, path);
        QCOMPARE(catalogueWith({ .pictures = path }), m_host);
    }

    void oneFolderForTwoPurposesIsOneLocation()
    {
        const auto host = catalogueWith({ .pictures = u"/home/ann/Media"_s, .videos = u"/home/ann/Media"_s });
        QCOMPARE(host.locations.size(), m_host.locations.size() + 1);
        QCOMPARE(host.locations.last().ruleId, u"photos.library"_s);
    }
};

QUILLBROOK_SUITE(TestLinuxCatalogue, NoApplication)
#include "tst_LinuxCatalogue.moc"
