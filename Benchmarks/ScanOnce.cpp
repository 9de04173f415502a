// Scans once with the program's own scanner and prints what it took as one JSON object.
//
//     ScanOnce FOLDER [--threads N] [--layouts N]
//     ScanOnce --made-up FILES [--threads N] [--layouts N]
//
// The second form scans a tree that is on no disk. Without --threads it takes as many as the program would.
// With --layouts the tree's root is laid out that often as a treemap of 1000 by 600 points.

#include "MadeUpDirectories.h"
#include "Platform/Linux/Folders/LinuxDirectoryReading.h"
#include "Platform/Linux/Processes/LinuxProcessors.h"
#include "Platform/Linux/ResidentMemory.h"
#include "Scan/FastScanner.h"
#include "Scan/Treemap.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <iterator>
#include <memory>
namespace {

using namespace Quillbrook;
using namespace Qt::StringLiterals;

double secondsOf(auto &&work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

QJsonObject layouts(const FastScanner::Result &result, int count)
{
    QJsonArray seconds;
    qsizetype tileCount = 0;
    for (int i = 0; i < count; ++i)
        seconds.append(secondsOf([&] {
            const auto tiles = Treemap::layout(
                { .tree = *result.tree, .node = result.root, .in = QRectF(0, 0, 1000, 600) });
            tileCount = std::ssize(tiles);
        }));
    return { { "seconds", seconds }, { "tiles", tileCount } };
}

QJsonObject figures(const FastScanner::Result &result)
{
    const auto &tree = *result.tree;
    return { { "scan_seconds", result.duration }, { "nodes", tree.nodeCount() },
        { "files", tree.fileCount() }, { "folders", tree.dirCount() }, { "bytes", tree.size(result.root) },
        { "name_bytes", qint64(tree.nameArena().size()) }, { "unreadable", result.unreadableDirectories } };
}

} // namespace

int main(int count, char **texts)
{
    QCoreApplication application(count, texts);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("folder", "The folder to scan.", "[folder]");
    const QCommandLineOption threads("threads", "Worker threads.", "number");
    const QCommandLineOption madeUp("made-up", "Scan this many files that are on no disk.", "files");
    const QCommandLineOption layoutCount("layouts", "Lay the root out this often.", "times", "0");
    parser.addOptions({ threads, madeUp, layoutCount });
    parser.process(application);
    const bool isMadeUp = parser.isSet(madeUp);
    if (parser.positionalArguments().size() != (isMadeUp ? 0 : 1))
        parser.showHelp(2);

    std::unique_ptr<DirectoryReading> directories;
    if (isMadeUp)
        directories = std::make_unique<Benchmarks::MadeUpDirectories>(parser.value(madeUp).toULongLong());
    else
        directories = std::make_unique<LinuxDirectoryReading>();
    const auto threadCount = parser.isSet(threads) ? parser.value(threads).toInt()
                                                   : FastScanner::defaultThreadCount(LinuxProcessors());
    const auto residentBefore = Benchmarks::peakResident();
    FastScanner scanner(*directories);
    FastScanner::Result result;
    const auto seconds = secondsOf([&] {
        result = scanner.scan({ .rootPath
            = isMadeUp ? "/made up" : QFile::encodeName(parser.positionalArguments().first()).toStdString(),
            .threads = threadCount });
    });
    auto output = figures(result);
    output["seconds"] = seconds;
    output["threads"] = threadCount;
    output["resident_before"] = qint64(residentBefore);
    output["peak_resident"] = qint64(Benchmarks::peakResident());
    output["layout"] = layouts(result, parser.value(layoutCount).toInt());
    std::puts(QJsonDocument(output).toJson(QJsonDocument::Compact).constData());
    return 0;
}
