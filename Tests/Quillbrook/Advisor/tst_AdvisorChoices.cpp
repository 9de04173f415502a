#include "Advisor/AdvisorChoices.h"
#include "Support/Suite.h"

#include <QTest>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 half = qint64{ 512 } * 1024 * 1024;

Finding finding(const QString &id, qint64 bytes = half, Safety safety = Safety::careful)
{
    return { .rule = { .id = id, .title = u"The "_s + id, .safety = safety }, .bytes = bytes };
}

QString described(const AdvisorSuggestion &suggestion)
{
    static const QStringList kinds{ u"choose"_s, u"remove"_s, u"move"_s, u"ask"_s, u"explain"_s };
    auto text = kinds.at(static_cast<qsizetype>(suggestion.kind.index())) + u": "_s + suggestion.label;
    if (const auto *question = std::get_if<AdvisorAction::Ask>(&suggestion.kind))
        text += u" > "_s + question->question;
    return text;
}

} // namespace

Q_DECLARE_METATYPE(Quillbrook::Safety)

class TestAdvisorChoices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void relatedIsWhatTheCatalogueRelates_data()
    {
        QTest::addColumn<QString>("named");
        QTest::addColumn<qint64>("daemonBytes");
        QTest::addColumn<qint64>("avdBytes");
        QTest::addColumn<Safety>("daemonSafety");
        QTest::addColumn<QString>("related");
        const auto careful = Safety::careful;
        const auto daemon = u"gradle.daemon"_s;
        const auto avd = u"android.avd"_s;
        QTest::newRow("named") << avd << half * 2 << half << careful << avd;
        QTest::newRow("named, however small") << daemon << qint64(1) << half << careful << daemon;
        QTest::newRow("named, though it must stay") << daemon << half << half << Safety::reportOnly << daemon;
        QTest::newRow("not related to it") << u"mail.data"_s << half + 1 << half << careful << daemon;
        QTest::newRow("not measured") << u"npm.cacache"_s << half + 1 << half << careful << daemon;
        QTest::newRow("nothing named") << u""_s << half + 1 << half * 4 << careful << daemon;
        QTest::newRow("exactly 512 MiB") << u""_s << half << half << careful << u""_s;
        QTest::newRow("one byte more") << u""_s << half << half + 1 << careful << avd;
        QTest::newRow("must stay") << u""_s << half * 9 << half << Safety::reportOnly << u""_s;
    }

    void relatedIsWhatTheCatalogueRelates()
    {
        QFETCH(QString, named);
        QFETCH(qint64, daemonBytes);
        QFETCH(qint64, avdBytes);
        QFETCH(Safety, daemonSafety);
        const auto subject = finding(u"gradle.caches"_s);
        const QList<Finding> findings{ finding(u"mail.data"_s, half * 9), subject,
            finding(u"gradle.daemon"_s, daemonBytes, daemonSafety), finding(u"android.avd"_s, avdBytes) };
        const auto related
            = AdvisorChoices::related({ .subject = subject, .findings = findings, .named = named });
        QTEST(related ? related->rule.id : QString(), "related");
    }

    void namedIsTheFallbackWhereItWasNotMeasured()
    {
        const auto subject = finding(u"gradle.daemon"_s);
        QVERIFY(!AdvisorChoices::related(
            { .subject = subject, .findings = { subject }, .named = u"gradle.caches"_s }));
    }

    void subjectIsTheExactFinding()
    {
        const QList<Finding> findings{ finding(u"a.b"_s, 1), finding(u"a.b"_s, 2) };
        QCOMPARE(AdvisorChoices::subject(findings, u"a.b"_s)->bytes, 1);
        for (const auto &id : { u""_s, u"A.b"_s, u"a.b "_s, u"a"_s, u"a.b,a.b"_s, u"The a.b"_s })
            QVERIFY(!AdvisorChoices::subject(findings, id));
    }

    void suggestionsFitTheSubject_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<Safety>("safety");
        QTest::addColumn<qsizetype>("items");
        QTest::addColumn<bool>("isRelated");
        QTest::addColumn<QStringList>("suggestions");
        const auto all = u"remove: Delete all · 512 MB"_s;
        const auto about = u"ask: What about the mail.data? > Tell me about the The mail.data"_s;
        const auto away = u"move: Move it to another drive"_s;
        QTest::newRow("a whole group")
            << u"npm.cacache"_s << Safety::safe << qsizetype(0) << false << QStringList{ all };
        QTest::newRow("one item") << u"npm.cacache"_s << Safety::safe << qsizetype(1) << false
                                  << QStringList{ u"choose: Pick it and delete"_s };
        QTest::newRow("two items, to be moved, and another group")
            << u"android.avd"_s << Safety::careful << qsizetype(2) << true
            << QStringList{ u"choose: Pick one to delete"_s, all, away, about };
        QTest::newRow("must stay") << u"photos.library"_s << Safety::reportOnly << qsizetype(5) << true
                                   << QStringList{ u"explain: Why not?"_s, away, about };
        QTest::newRow("nothing")
            << u""_s << Safety::safe << qsizetype(0) << false
            << QStringList{ u"ask: What's safe to delete? > What is safe to delete right now?"_s,
                   u"ask: What's using the most space? > What is using the most space?"_s,
                   u"ask: What can I move to another drive? > What could I move to an external drive?"_s };
    }

    void suggestionsFitTheSubject()
    {
        QFETCH(QString, id);
        QFETCH(Safety, safety);
        QFETCH(qsizetype, items);
        QFETCH(bool, isRelated);
        QStringList words;
        for (const auto &suggestion : AdvisorChoices::suggestions(
                 { .subject = id.isEmpty() ? std::nullopt : std::optional(finding(id, half, safety)),
                   .related = isRelated ? std::optional(finding(u"mail.data"_s)) : std::nullopt,
                   .itemCount = items }))
            words.append(described(suggestion));
        QTEST(words, "suggestions");
    }
};

QUILLBROOK_SUITE(TestAdvisorChoices, NoApplication)
#include "tst_AdvisorChoices.moc"
