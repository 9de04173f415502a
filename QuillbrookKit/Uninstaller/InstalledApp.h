#pragma once

// An application of any kind that a machine has, with what its host knows of it. A plain value.

#include "Uninstaller/AppBundle.h"

#include <QStringList>

#include <cstdint>
#include <vector>

namespace Quillbrook {

/// How an application came to the machine, and with it how it goes.
enum class AppOrigin : std::uint8_t {
    /// A bundle; it goes to the Trash.
    bundle,
    /// A Flatpak of this user; Flatpak itself takes it away, for good.
    flatpakOfUser,
    /// These three need an administrator.
    flatpakOfSystem,
    snap,
    package,
    /// Put in a folder of the system by nobody known; it needs an administrator too.
    systemEntry,
    /// One file, and the entry that starts it where there is one; they go to the Trash.
    appImage,
    /// An entry of this user's that starts a program; it goes to the Trash, the program perhaps with it.
    ownEntry,
};

struct InstalledApp
{
    /// `bytes` is 0 until it is measured.
    AppBundle app{};
    AppOrigin origin = AppOrigin::bundle;
    /// Whom it came from, in words: a Flatpak remote, a package. Empty where nobody tells.
    QString originName{};
    /// A name in the icon theme, or an absolute path; empty without one.
    QString icon{};
    /// The picture of that, where one was found.
    std::string iconFile{};
    /// What the entry starts: the last component of the program, without folders. Empty where it is unknown.
    QString programName{};
    /// Its program lies outside of the home folder and stays: what is named after it is in use without it.
    bool isProgramElsewhere = false;
    /// Another application of the same identifier is installed, which menus don't show beside this one.
    bool hidesAnother = false;
    /// Paths (raw bytes) by which a process of it is known.
    std::vector<std::string> programs{};
    /// What goes to the Trash with it, in that order; `app.path` is the last. Empty for what doesn't go so.
    std::vector<std::string> goes{};
    /// The program that its entry starts lies where it isn't touched.
    bool programStays = false;
    /// Whole refs of a Flatpak, one for each branch of it that is installed.
    QStringList refs{};
    /// Runtimes that nothing else would use after it, each as a ref.
    QStringList runtimes{};
    /// By which a software centre knows it; empty where it can't.
    QString componentId{};
    /// It is the program that asks.
    bool isSelf = false;
    /// The size is known without measuring.
    bool isMeasured = false;
    /// The package is that of others here too, and the size that of the whole package.
    bool sharesPackage = false;

    bool operator==(const InstalledApp &) const = default;

    /// What tells it from every other one.
    [[nodiscard]] QString key() const
    {
        return QString::number(int(origin)) + u':'
            + (app.bundleID.isEmpty() ? QString::fromStdString(app.path) : app.bundleID);
    }
    /// Whether an administrator alone can take it away.
    [[nodiscard]] bool needsAdministrator() const
    {
        return origin == AppOrigin::flatpakOfSystem || origin == AppOrigin::snap
            || origin == AppOrigin::package || origin == AppOrigin::systemEntry;
    }
};

} // namespace Quillbrook
