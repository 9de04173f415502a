#include "Catalogue/Simulators.h"

#include "Platform/FileReading.h"
#include "Platform/ProcessRunner.h"
#include "PropertyList.h"

#include <algorithm>
#include <limits>

namespace Quillbrook::Simulators {

using namespace Qt::StringLiterals;

namespace {

QString trimmedBlanksAndTabs(QStringView text)
{
    const auto isBlank = [](QChar character) { return character == u' ' || character == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text.toString();
}

} // namespace

QSet<QString> parseBootedIds(const QByteArray &listing)
{
    QSet<QString> ids;
    for (const auto &line : QString::fromUtf8(listing).split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.contains(u"(Booted)"))
            continue;
        auto pieces = line.split(u'(', Qt::SkipEmptyParts);
        if (pieces.size() > 1)
            ids.insert(trimmedBlanksAndTabs(pieces[1].remove(u')')));
    }
    return ids;
}

QSet<QString> bootedIds(const ProcessRunner &processes)
{
    // Read to its end: a listing that was cut would show a running device as one that may go.
    const auto result = processes.run({ .program = u"/usr/bin/xcrun"_s,
        .arguments = { u"simctl"_s, u"list"_s, u"devices"_s },
        .timeLimit = std::chrono::milliseconds::max(),
        .outputLimit = std::numeric_limits<qsizetype>::max() });
    return result ? parseBootedIds(result->output) : QSet<QString>();
}

std::optional<QString> parseName(const QByteArray &propertyList)
{
    const auto list = PropertyList::dictionary(propertyList);
    auto name = list ? list->text("name") : std::nullopt;
    if (!name)
        return std::nullopt;
    const auto runtime = list->text("runtime").value_or(QString());
    const auto pieces = runtime.split(u'.', Qt::SkipEmptyParts);
    if (pieces.isEmpty())
        return name;
    auto version = pieces.last();
    return *name + u" \u00B7 "_s + version.replace(u'-', u'.');
}

std::optional<QString> name(const FileReading &reading, const std::string &deviceDirectory)
{
    const auto content = reading.contents(deviceDirectory + "/device.plist", PropertyList::maximumBytes);
    return content ? parseName(*content) : std::nullopt;
}

} // namespace Quillbrook::Simulators
