#include "StandardisedPath.h"

#include <string_view>
#include <vector>

namespace Quillbrook {

namespace {

// "~" and "~/x" only: another user's home is not looked up.
template <typename Text, typename Character>
Text withHome(const Text &path, const Text &home, Character tilde, Character slash)
{
    const bool expands = path.size() > 0 && path[0] == tilde && (path.size() == 1 || path[1] == slash);
    if (!expands || home.size() == 0)
        return path;
    Text expanded = home;
    for (decltype(path.size()) i = 1; i < path.size(); ++i)
        expanded += path[i];
    return expanded;
}

template <typename View, typename Character>
std::vector<View> resolvedComponents(View path, bool isAbsolute, Character dot, Character slash)
{
    std::vector<View> components;
    decltype(path.size()) start = 0;
    while (start < path.size()) {
        auto end = start;
        while (end < path.size() && path[end] != slash)
            ++end;
        const View component(path.data() + start, end - start);
        start = end + 1;
        const bool isDot = component.size() == 1 && component[0] == dot;
        const bool isDotDot = component.size() == 2 && component[0] == dot && component[1] == dot;
        if (component.size() == 0 || isDot)
            continue;
        const bool climbsOut = !components.empty() && components.back().size() == 2
            && components.back()[0] == dot && components.back()[1] == dot;
        if (!isDotDot || (!isAbsolute && (components.empty() || climbsOut)))
            components.push_back(component);
        else if (!components.empty())
            components.pop_back();
    }
    return components;
}

template <typename Text, typename View, typename Character>
Text standardised(const Text &path, const Text &home, Character tilde, Character dot, Character slash)
{
    const Text expanded = withHome(path, home, tilde, slash);
    if (expanded.size() == 0)
        return {};
    const bool isAbsolute = expanded[0] == slash;
    Text result;
    for (const View component : resolvedComponents(View(expanded), isAbsolute, dot, slash)) {
        if (isAbsolute || result.size() > 0)
            result += slash;
        result.append(component);
    }
    if (result.size() == 0)
        result += isAbsolute ? slash : dot;
    return result;
}

} // namespace

QString standardisedPath(const QString &path, const QString &home)
{
    return standardised<QString, QStringView>(path, home, QChar(u'~'), QChar(u'.'), QChar(u'/'));
}

std::string standardisedPath(const std::string &path, const std::string &home)
{
    return standardised<std::string, std::string_view>(path, home, '~', '.', '/');
}

std::string parentOf(const std::string &path)
{
    const auto slash = path.find_last_of('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

} // namespace Quillbrook
