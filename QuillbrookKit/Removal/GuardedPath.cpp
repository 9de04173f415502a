#include "Removal/GuardedPath.h"

#include <algorithm>

namespace Quillbrook {

namespace {

bool isPlain(std::string_view text)
{
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

void appendComposed(std::string &result, std::string_view name)
{
    const auto text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    const auto isText = !isPlain(name) && text.toStdString() == name;
    result += isText ? text.normalized(QString::NormalizationForm_C).toStdString() : std::string(name);
}

} // namespace

GuardedPath GuardedPath::judge(const std::string &path, const std::string &home)
{
    GuardedPath judged{ .path = composed(path) };
    const auto homePath = composed(home);
    judged.isHome = judged.path == homePath;
    const auto top = homePath == "/" ? homePath : homePath + '/';
    if (judged.path.size() > top.size() && judged.path.starts_with(top))
        judged.rest = judged.path.substr(top.size());
    return judged;
}

std::string GuardedPath::composed(const std::string &path)
{
    if (isPlain(path))
        return path;
    std::string result;
    for (size_t start = 0; start <= path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        appendComposed(result, std::string_view(path).substr(start, end - start));
        if (end < path.size())
            result += '/';
        start = end + 1;
    }
    return result;
}

bool GuardedPath::holds(std::string_view other) const
{
    return other != path && isWithin(other, path);
}

std::vector<std::string_view> GuardedPath::components() const
{
    std::vector<std::string_view> names;
    for (size_t start = 0; start < path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        if (end > start)
            names.push_back(std::string_view(path).substr(start, end - start));
        start = end + 1;
    }
    return names;
}

std::string_view GuardedPath::lastComponent() const
{
    return std::string_view(path).substr(path.rfind('/') + 1);
}

std::string GuardedPath::friendly() const
{
    return rest ? "~/" + *rest : path;
}

QString GuardedPath::extension(std::string_view name)
{
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    const auto extension = name.substr(dot + 1);
    return QString::fromUtf8(extension.data(), static_cast<qsizetype>(extension.size()))
        .normalized(QString::NormalizationForm_C)
        .toLower();
}

bool GuardedPath::isWithin(std::string_view path, std::string_view root)
{
    return path.starts_with(root)
        && (path.size() == root.size() || root.ends_with('/') || path[root.size()] == '/');
}

} // namespace Quillbrook
