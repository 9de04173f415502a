// Does one of the catalogue's jobs and prints what it took as one JSON object.
//
//     CatalogueOnce quick HOME       the quick stage
//     CatalogueOnce bare HOME        a bare walk of each of its locations
//     CatalogueOnce evaluate         evaluations of a made-up tree of a million nodes that holds every
//     location
//     CatalogueOnce instructions     what a language model is told of 400 findings over that tree

#include "Advisor/AdvisorPrompt.h"
#include "Catalogue/CatalogueLocations.h"
#include "CatalogueHome.h"
#include "Platform/Linux/BareWalk.h"
#include "Scan/FastScanner.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>

namespace {

using namespace Quillbrook;
using namespace Qt::StringLiterals;
using namespace Quillbrook::Benchmarks;
using Watch = std::chrono::steady_clock;

constexpr int evaluations = 21;

double secondsSince(Watch::time_point start)
{
    return std::chrono::duration<double>(Watch::now() - start).count();
}

HostCatalogue hostOf(const QString &home)
{
    return LinuxCatalogue::catalogue(
        LinuxUserFolders::read(LinuxFileReading(), home.toStdString() + "/.config", home), home);
}

QJsonObject quick(const QString &home)
{
    CatalogueMachine machine;
    const auto host = hostOf(home);
    double first = 0;
    const auto start = Watch::now();
    const auto report = StorageCatalogue::quickScan(machine.services(),
        { .places = { .homeDirectory = home, .host = &host }, .onFinding = [&first, start](const Finding &) {
             if (first == 0)
                 first = secondsSince(start);
         } });
    return { { "seconds", secondsSince(start) }, { "first_finding_seconds", first },
        { "findings", report.findings.size() } };
}

QJsonObject bare(const QString &home)
{
    const auto host = hostOf(home);
    const auto threads = FastScanner::defaultThreadCount(LinuxProcessors());
    double sum = 0;
    qint64 files = 0;
    int walked = 0;
    for (const auto &location : catalogueLocations({ .homeDirectory = home, .host = &host })) {
        const auto path = location.path.toStdString();
        if (LinuxFileFacts().kind(path) != FileKind::directory)
            continue;
        const auto result = bareWalk(path, threads);
        sum += result.seconds;
        files += static_cast<qint64>(result.files);
        ++walked;
    }
    return { { "seconds", sum }, { "locations", walked }, { "files", files } };
}

QJsonObject evaluate()
{
    CatalogueMachine machine;
    const auto home = u"/home/nobody here"_s;
    const auto host = hostOf(home);
    CatalogueHome maker(home);
    maker.addEveryLocation(host);
    const auto tree = maker.finish();
    QJsonArray seconds;
    qsizetype findings = 0;
    for (int i = 0; i < evaluations; ++i) {
        const auto start = Watch::now();
        findings = StorageCatalogue::evaluate(machine.services(),
            { .tree = *tree, .root = 0, .places = { .homeDirectory = home, .host = &host } })
                       .findings.size();
        seconds.append(secondsSince(start));
    }
    return { { "seconds", seconds }, { "nodes", tree->nodeCount() }, { "findings", findings } };
}

/// The evaluation's findings, over and over, until there are as many as in the measure.
QJsonObject instructions()
{
    constexpr qsizetype findingCount = 400;
    CatalogueMachine machine;
    const auto home = u"/home/nobody here"_s;
    const auto host = hostOf(home);
    CatalogueHome maker(home);
    maker.addEveryLocation(host);
    const auto tree = maker.finish();
    const StorageCatalogue::Places places{ .homeDirectory = home, .host = &host };
    const auto found
        = StorageCatalogue::evaluate(machine.services(), { .tree = *tree, .root = 0, .places = places })
              .findings;
    QJsonArray seconds;
    qsizetype length = 0;
    for (int i = 0; i < evaluations; ++i) {
        const auto start = Watch::now();
        AdvisorPrompt::Facts facts{ .host = &host };
        for (qsizetype row = 0; row < findingCount; ++row) {
            const auto &finding = found.at(row % found.size());
            facts.groups.append(
                { .finding = finding, .itemCount = StorageCatalogue::itemCount(finding, *tree, 0, places) });
        }
        length = AdvisorPrompt::instructions(facts).size();
        seconds.append(secondsSince(start));
    }
    return { { "seconds", seconds }, { "nodes", tree->nodeCount() }, { "findings", findingCount },
        { "characters", length } };
}

} // namespace

int main(int count, char **texts)
{
    const QByteArray job = count > 1 ? texts[1] : "";
    QJsonObject output;
    if (job == "quick" && count == 3)
        output = quick(QFile::decodeName(texts[2]));
    else if (job == "bare" && count == 3)
        output = bare(QFile::decodeName(texts[2]));
    else if (job == "evaluate" && count == 2)
        output = evaluate();
    else if (job == "instructions" && count == 2)
        output = instructions();
    else {
        std::fputs("CatalogueOnce quick HOME | bare HOME | evaluate | instructions\n", stderr);
        return 2;
    }
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
