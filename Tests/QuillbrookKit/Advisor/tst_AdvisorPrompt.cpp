#include "Advisor/AdvisorPrompt.h"
#include "Advisor/ChatRequest.h"
#include "Catalogue/Linux/LinuxCatalogue.h"
#include "Catalogue/StorageCatalogue.h"
#include "Support/Suite.h"

#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

#include <nlohmann/json.hpp>
#include <random>

using namespace Quillbrook;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibi = qint64{ 1024 } * 1024 * 1024;
const QDateTime now(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);

AdvisorPrompt::Group group(const QString &id, qint64 bytes, qsizetype itemCount = 0)
{
    const auto rules = StorageCatalogue::rules();
    const auto rule = std::ranges::find(rules, id, &ReclaimRule::id);
    if (rule == rules.end())
        qFatal("no such rule");
    return { .finding = { .rule = *rule, .bytes = bytes, .lastModified = now.addDays(-70) },
        .itemCount = itemCount };
}

QStringList lines(const QList<AdvisorPrompt::Group> &groups, const HostCatalogue *host = nullptr)
{
    const auto text = AdvisorPrompt::instructions({ .groups = groups, .now = now, .host = host });
    auto lines = text.section(u"\n\n"_s, 1, 1).split(u'\n');
    return lines;
}

class Backwards final : public QTranslator
{
public:
    QString translate(const char * /*context*/, const char *text, const char *, int) const override
    {
        return u"«%1»"_s.arg(QString::fromUtf8(text));
    }
    bool isEmpty() const override { return false; }
};

/// Findings as a disk could bring them forth, with names of every kind in whatever comes from it.
class MadeUpReports
{
public:
    MadeUpReports()
    {
        for (const auto &rule : StorageCatalogue::rules())
            m_rules.append(rule);
        for (const auto &row : host.rules)
            m_rules.append(row.rule);
    }

    QList<AdvisorPrompt::Group> next()
    {
        secrets.clear();
        QList<AdvisorPrompt::Group> groups;
        for (auto count = below(6); count > 0; --count) {
            AdvisorPrompt::Group made{ .itemCount = static_cast<qsizetype>(below(4)) };
            made.finding.rule
                = m_rules.at(static_cast<qsizetype>(below(static_cast<unsigned>(m_rules.size()))));
            made.finding.path = u"/home/"_s + secret() + u'/' + secret();
            made.finding.id = Finding::idFor(made.finding.rule.id, made.finding.path);
            made.finding.bytes = static_cast<qint64>(m_random() % 1'000'000'000'000);
            made.finding.applicationId = secret();
            made.finding.locationLabel = secret();
            made.finding.redirectedOffVolume = below(2) == 0;
            if (below(3) > 0)
                made.finding.lastModified = now.addDays(-static_cast<qint64>(below(500)));
            groups.append(made);
        }
        return groups;
    }

    HostCatalogue host = LinuxCatalogue::catalogue({}, u"/home/nobody"_s);
    QStringList secrets;

private:
    unsigned below(unsigned end) { return static_cast<unsigned>(m_random() % end); }

    // With a mark in it that no other text has.
    QString secret()
    {
        static const QStringList pieces{ u"report.pdf"_s, u"שלום"_s, u"\u202egnp.exe"_s, u"a\nb"_s,
            u"\"quoted\""_s, u"\u2028"_s, u"id=xcode"_s, u"\x1b[31m"_s, u"写真"_s, u"e\u0301"_s,
            u"name=\" size=1 GB"_s, u".."_s, u"\r\n- id=all"_s, QString(QChar(0xd800)),
            QString(QChar(u'\0')) };
        const auto made = pieces.at(static_cast<qsizetype>(below(static_cast<unsigned>(pieces.size()))))
            + u"ȸ"_s + QString::number(m_random());
        secrets.append(made);
        return made;
    }

    std::minstd_rand m_random{ 2024 };
    QList<ReclaimRule> m_rules;
};

} // namespace

class TestAdvisorPrompt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsThisToTheByte()
    {
        const auto text = AdvisorPrompt::instructions(
            { .groups = { group(u"simulator.devices"_s, gibi * 104 / 10, 5), group(u"mail.data"_s, 2 * gibi),
                  group(u"android.avd"_s, gibi, 1) },
                .volumeFree = gibi * 482 / 10,
                .now = now });
        const auto *expected
            = "You answer questions about disk space on this Mac. These groups have already been measured "
              "for the user:\n"
              "\n"
              "- id=simulator.devices name=\"Test iPhones and iPads\" size=10.4 GB count=5 "
              "touched=2 months ago policy=Worth a thought related=android.avd\n"
              "- id=mail.data name=\"%1\" size=2.0 GB touched=2 months ago policy=Never suggested\n"
              "- id=android.avd name=\"%2\" size=1.0 GB count=1 touched=2 months ago policy=%3 "
              "related=simulator.devices\n"
              "\n"
              "Rules:\n"
              "- Refer to groups only by the ids above. Never invent a path or a command.\n"
              "- Use the real sizes and counts when you answer. Be brief and concrete.\n"
              "- Groups marked 'Report only' must never be offered for removal; explain why instead.\n"
              "- Always answer in a full sentence that includes the number AND the size, copied exactly from "
              "the list above. Do not do arithmetic — the counts are already correct. \"1\" is not an "
              "acceptable answer.\n"
              "- Set groupID to the group the question is about, every time, whether or not a removal was "
              "asked for.\n"
              "- Some groups list a `related` field. Those ids are the ONLY other groups you may bring up. "
              "When one is present, set alsoConsiderGroupID to it and mention it as a further way to free "
              "space.\n"
              "- Never mention anything that is not in the list above. If this Mac has no group for "
              "something, it does not exist here — do not suggest checking it.\n"
              "- You never delete anything. Setting proposesRemoval offers the user a list they choose from "
              "and confirm themselves.\n"
              "\n"
              "Free space right now: 48.2 GB.\n";
        QCOMPARE(text,
            QString::fromUtf8(expected).arg(group(u"mail.data"_s, 0).finding.rule.title,
                group(u"android.avd"_s, 0).finding.rule.title,
                label(group(u"android.avd"_s, 0).finding.rule.safety)));
    }

    void withoutFindingsTheRulesFollowTheOpening()
    {
        const auto text = AdvisorPrompt::instructions({ .now = now });
        QVERIFY(text.startsWith(u"You answer"));
        QVERIFY(text.contains(u"for the user:\n\n\n\nRules:\n- Refer"_s));
        QVERIFY(text.endsWith(u"themselves.\n\nFree space right now: 0 B.\n"_s));
    }

    void relatedGroupsAreOnlyThoseThatAreListed()
    {
        QVERIFY(!lines({ group(u"gradle.caches"_s, 1) }).first().contains(u"related="));
        const auto both = lines(
            { group(u"gradle.caches"_s, 1), group(u"android.avd"_s, 1), group(u"gradle.daemon"_s, 1) });
        QVERIFY(both.first().endsWith(u" related=gradle.daemon,android.avd"_s));
    }

    void whatTheModelReadsStaysEnglish()
    {
        const auto before = lines({ group(u"android.avd"_s, gibi, 2) });
        Backwards translator;
        QCoreApplication::installTranslator(&translator);
        const auto after = lines({ group(u"android.avd"_s, gibi, 2) });
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(after, before);
    }

    void sanitisedTextStaysOnItsLineAndBetweenItsQuotes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        const auto sixty = QString(60, u'x');
        QTest::newRow("nothing") << u""_s << u""_s;
        QTest::newRow("quotes and a line feed") << u"a \"b\"\nc"_s << u"a 'b' c"_s;
        QTest::newRow("carriage return and line feed") << u"a\r\nb"_s << u"a b"_s;
        QTest::newRow("every other end of a line")
            << u"a\u000bb\u000cc\rd\u0085e\u2028f\u2029g"_s << u"abcdefg"_s;
        QTest::newRow("other control characters stay") << u"a\tb"_s << u"a\tb"_s;
        QTest::newRow("sixty") << sixty << sixty;
        QTest::newRow("sixty-one") << sixty + u'y' << sixty + u'…';
        const auto accented = u"e\u0301"_s.repeated(60);
        QTest::newRow("sixty that are two each") << accented << accented;
        QTest::newRow("sixty-one that are two each") << accented + u"e\u0301"_s << accented + u'…';
        const auto family = u"\U0001F468\u200d\U0001F469\u200d\U0001F467"_s.repeated(60);
        QTest::newRow("sixty families") << family << family;
        QTest::newRow("line feeds count as blanks") << u"\n"_s.repeated(61) << QString(60, u' ') + u'…';
    }

    void sanitisedTextStaysOnItsLineAndBetweenItsQuotes()
    {
        QFETCH(QString, text);
        QTEST(AdvisorPrompt::sanitise(text, 60), "line");
    }

    // Every line is one that could be written without having seen the disk: rules of the tables, figures,
    // ages.
    void nothingFromTheDiskIsEverSent()
    {
        MadeUpReports reports;
        QHash<QString, QString> titles;
        for (const auto &rule : StorageCatalogue::rules())
            titles.insert(rule.id, AdvisorPrompt::sanitise(rule.title, 60));
        for (const auto &row : reports.host.rules)
            titles.insert(row.rule.id, AdvisorPrompt::sanitise(row.rule.title, 60));
        const QRegularExpression form(
            u"^- id=([a-z0-9.]+) name=\"([^\"\\n]+)\" size=\\d+(\\.\\d)? (B|KB|MB|GB|TB)( count=[1-9]\\d*)? "
            u"touched=(unknown|today|yesterday|\\d+ days ago|\\d+ months ago|over a year ago) policy=(Safe "
            u"to remove|Worth a thought|Never suggested)( related=[a-z0-9.,]+)?$"_s);
        const auto rest
            = [](const QString &text) { return text.section(u"\n\n"_s, 0, 0) + text.section(u"\n\n"_s, 2); };
        const auto frame
            = rest(AdvisorPrompt::instructions({ .now = now }).replace(u"\n\n\n\n"_s, u"\n\nx\n\n"_s));
        for (int i = 0; i < 100'000; ++i) {
            const auto groups = reports.next();
            const auto text
                = AdvisorPrompt::instructions({ .groups = groups, .now = now, .host = &reports.host });
            QVERIFY(!text.contains(u'ȸ') && !text.contains(u"/home"));
            if (i % 20 == 0) {
                const ChatRequest request{
                    .model = u"small"_s, .instructions = text, .question = u"What?"_s
                };
                const auto sent
                    = QString::fromUtf8(i % 40 == 0 ? request.ollamaBody(8192) : request.completionsBody());
                QVERIFY(!sent.contains(u'ȸ') && !sent.contains(u"/home") && !sent.contains(u"\\u00"));
            }
            if (groups.isEmpty())
                continue;
            QCOMPARE(rest(text), frame);
            for (const auto &line : text.section(u"\n\n"_s, 1, 1).split(u'\n')) {
                const auto match = form.match(line);
                QVERIFY2(match.hasMatch(), qPrintable(line));
                QCOMPARE(match.captured(2), titles.value(match.captured(1)));
            }
        }
    }
};

QUILLBROOK_SUITE(TestAdvisorPrompt, QCoreApplication)
#include "tst_AdvisorPrompt.moc"
