#pragma once

// What is installed in one folder of Flatpak's, by its own files: no process is started.

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace Quillbrook {

class FileReading;

namespace FlatpakInstallation {

struct App
{
    QString id{};
    /// The folder of all its branches.
    std::string folder{};
    /// That of the branch that its entry starts.
    std::string deployment{};
    QString version{};
    /// The remote it came from; empty where that isn't told.
    QString origin{};
    /// "app/ID/ARCH/BRANCH" of every branch that is installed, and the runtimes those say they run on, as
    /// "runtime/ID/ARCH/BRANCH".
    QStringList refs{};
    QStringList runtimes{};

    bool operator==(const App &) const = default;
};

[[nodiscard]] std::vector<App> apps(const FileReading &reading, const std::string &folder);
/// The ids of all applications, runtimes and extensions that have a folder there, also of damaged ones.
[[nodiscard]] QStringList allIds(const std::string &folder);
/// Where a ref of it lies.
[[nodiscard]] std::string folderOf(const std::string &folder, const QString &ref);

/// Whether `ref` has the form of one: four pieces of harmless characters, of which none begins with a dash.
[[nodiscard]] bool isRef(const QString &ref);
/// The origin that a deployment's own note tells.
[[nodiscard]] QString originOf(const QByteArray &deploy);
/// The first release of a component's description.
[[nodiscard]] QString versionOf(const QByteArray &metainfo);

} // namespace FlatpakInstallation

} // namespace Quillbrook
