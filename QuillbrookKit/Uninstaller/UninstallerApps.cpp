#include "Platform/FileFacts.h"
#include "Platform/FileReading.h"
#include "PropertyList.h"
#include "RawText.h"
#include "Uninstaller/FolderNames.h"
#include "Uninstaller/Uninstaller.h"

#include <algorithm>
#include <set>

namespace Quillbrook::Uninstaller {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view bundleSuffix = ".app";

bool isBundleName(const std::string &name)
{
    return name.ends_with(bundleSuffix);
}

std::string lastComponent(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

// The bundles in a folder and in the folders there, in the order they are found.
std::vector<std::string> bundlePaths(const std::string &folder)
{
    std::vector<std::string> paths;
    for (const auto &name : FolderNames::in(folder)) {
        const auto path = folder + '/' + name;
        if (isBundleName(name)) {
            paths.push_back(path);
            continue;
        }
        if (name.starts_with('.'))
            continue;
        for (const auto &inner : FolderNames::in(path))
            if (isBundleName(inner))
                paths.push_back(path + '/' + inner);
    }
    return paths;
}

} // namespace

std::vector<std::string> appFolders(const std::string &home)
{
    return { "/Applications", "/Applications/Utilities", "/System/Applications",
        "/System/Applications/Utilities", home + "/Applications" };
}

std::vector<AppBundle> installedApps(
    const UninstallerServices &services, const std::vector<std::string> &folders, const Measure &measure)
{
    std::vector<AppBundle> apps;
    std::set<std::string> seen;
    for (const auto &folder : folders) {
        for (const auto &path : bundlePaths(folder)) {
            auto app = readBundle(services, path, measure);
            if (!app)
                continue;
            const auto key = app->bundleID.isEmpty() ? path : app->bundleID.toStdString();
            if (seen.insert(key).second)
                apps.push_back(std::move(*app));
        }
    }
    std::ranges::stable_sort(apps, std::ranges::greater(), &AppBundle::bytes);
    return apps;
}

std::optional<AppBundle> readBundle(
    const UninstallerServices &services, const std::string &path, const Measure &measure)
{
    const auto bytes = services.reading.contents(path + "/Contents/Info.plist", PropertyList::maximumBytes);
    const auto list = bytes ? PropertyList::dictionary(*bytes) : std::nullopt;
    if (!list)
        return std::nullopt;
    const auto fileName = lastComponent(path);
    const auto plainName = repairedText(fileName.substr(0, fileName.size() - bundleSuffix.size()));
    auto version = list->text("CFBundleShortVersionString");
    if (!version)
        version = list->text("CFBundleVersion");
    AppBundle app{ .path = path,
        .name = list->text("CFBundleName").value_or(plainName),
        .bundleID = list->text("CFBundleIdentifier").value_or(QString()),
        .version = version };
    app.isSystem = path.starts_with("/System/") || app.bundleID.startsWith(u"com.apple."_s);
    app.fromAppStore = services.files.dates(path + "/Contents/_MASReceipt/receipt").has_value();
    if (const auto dates = services.files.dates(path))
        app.lastOpened = dates->lastModified;
    app.bytes = measure(path);
    return app;
}

} // namespace Quillbrook::Uninstaller
