#include "Removal/PathGuards.h"

#include <algorithm>

namespace Quillbrook::PathGuards {

using namespace Qt::StringLiterals;

namespace {

using Named = std::optional<std::string>;

Named when(bool holds)
{
    return holds ? Named(std::in_place) : std::nullopt;
}

bool isPackage(std::string_view name)
{
    return std::ranges::find(libraryBundles, QStringView(GuardedPath::extension(name)))
        != libraryBundles.end();
}

Named systemRoot(const GuardedPath &path)
{
    const auto root = std::ranges::find_if(systemRoots, [&](auto each) { return path.isWithin(each); });
    const bool holds = path.fearsSystemRoots && root != systemRoots.end();
    return holds ? Named(*root) : std::nullopt;
}

Named driveAlone(const GuardedPath &path)
{
    constexpr std::string_view drives = "/Volumes/";
    return when(path.path.starts_with(drives) && path.path.find('/', drives.size()) == std::string::npos);
}

Named skeleton(const GuardedPath &path)
{
    return when(std::ranges::any_of(homeSkeleton, [&](auto name) { return path.restIs(name); }));
}

Named packageOnTheWay(const GuardedPath &path)
{
    const auto names = path.components();
    const auto package = std::ranges::find_if(names, isPackage);
    return package != names.end() ? Named(*package) : std::nullopt;
}

QString text(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

// In one pass, so that braces in the name of a file stay what they are.
QString worded(const QString &sentence, const GuardedPath &path, const std::string &named)
{
    QString result;
    for (qsizetype start = 0; start < sentence.size();) {
        const auto open = sentence.indexOf(u'{', start);
        const auto close = sentence.indexOf(u'}', open + 1);
        if (open < 0 || close < 0)
            return result += QStringView(sentence).sliced(start);
        result += QStringView(sentence).sliced(start, open - start);
        const auto word = QStringView(sentence).sliced(open + 1, close - open - 1);
        if (word == u"path")
            result += text(path.friendly());
        else if (word == u"name")
            result += text(path.lastComponent());
        else if (word == u"rest")
            result += text(path.rest.value_or(path.path));
        else
            result += text(named);
        start = close + 1;
    }
    return result;
}

} // namespace

std::span<const Guard> builtIn()
{
    static const std::array<Guard, 11> table{ {
        {
            .names = [](const GuardedPath &path) { return when(!path.path.starts_with('/')); },
            .sentence = u"That is not a path Quillbrook can act on."_s,
        },
        {
            .names = [](const GuardedPath &path) { return when(path.path == "/"); },
            .sentence = u"That is the whole disk."_s,
        },
        {
            .names = [](const GuardedPath &path) { return when(path.path.ends_with('/')); },
            .sentence = u"That is not a path Quillbrook can act on."_s,
        },
        {
            .names = [](const GuardedPath &path) { return when(path.isHome); },
            .sentence = u"That is your home folder."_s,
        },
        {
            .names = systemRoot,
            .sentence = u"{path} belongs to macOS. Quillbrook does not remove anything inside {named}."_s,
        },
        {
            .names = driveAlone,
            .sentence = u"That is an entire drive, not something on it."_s,
        },
        {
            .names = skeleton,
            .sentence
            = u"{rest} is one of your Mac's own folders. Quillbrook can clear things inside it, but will not remove the folder itself."_s,
        },
        {
            .names
            = [](const GuardedPath &path) { return when(path.restIsWithin("Library/Mobile Documents")); },
            .sentence
            = u"That is in iCloud Drive. Removing it here removes it from every device on your account, so it is not Quillbrook's to take."_s,
        },
        {
            .names = [](const GuardedPath &path) { return when(isPackage(path.lastComponent())); },
            .sentence = packageSentence(),
        },
        {
            .names = packageOnTheWay,
            .sentence = insidePackageSentence(),
        },
        {
            .names = [](const GuardedPath &path) { return when(path.path.ends_with("/Quillbrook.app")); },
            .sentence = u"That is Quillbrook itself."_s,
        },
    } };
    return table;
}

std::optional<QString> answer(std::span<const Guard> table, const GuardedPath &path,
    const std::function<QString(const QString &sentence)> &wording)
{
    for (const auto &row : table)
        if (const auto named = row.names(path))
            return worded(wording ? wording(row.sentence) : row.sentence, path, *named);
    return std::nullopt;
}

QString packageSentence()
{
    return u"{name} looks like a folder but is one single file. It belongs to the app that made it, so Quillbrook leaves it alone."_s;
}

QString insidePackageSentence()
{
    return u"That is inside {named}, which looks like a folder but is one single file. Taking a piece out of it breaks the whole thing."_s;
}

} // namespace Quillbrook::PathGuards
