#include "Catalogue/Linux/LinuxQuietScope.h"

#include <QStringList>

namespace Quillbrook::LinuxQuietScope {

using namespace Qt::StringLiterals;

namespace {

const QStringList &openFolders()
{
    static const QStringList names = {
        // The desktop and its sandboxes.
        u".config"_s,
        u".var"_s,
        u"snap"_s,
        u".thumbnails"_s,
        u".nv"_s,
        // Browsers, mail and chat.
        u".mozilla"_s,
        u".librewolf"_s,
        u".zen"_s,
        u".thunderbird"_s,
        u".purple"_s,
        // Programming.
        u".bun"_s,
        u".yarn"_s,
        u".pnpm-store"_s,
        u".composer"_s,
        u".nuget"_s,
        u".ivy2"_s,
        u".sbt"_s,
        u".cabal"_s,
        u".stack"_s,
        u".ghcup"_s,
        u".opam"_s,
        u".julia"_s,
        u".conan"_s,
        u".conan2"_s,
        u".triton"_s,
        u".virtualenvs"_s,
        u".conda"_s,
        u"miniconda3"_s,
        u"anaconda3"_s,
        u"miniforge3"_s,
        u"mambaforge"_s,
        u"micromamba"_s,
        u".pyenv"_s,
        u".rbenv"_s,
        u".sdkman"_s,
        u".asdf"_s,
        u".volta"_s,
        u".jdks"_s,
        u".konan"_s,
        u".arduino15"_s,
        u".espressif"_s,
        u"Android"_s,
        u".vscode-oss"_s,
        u".cursor"_s,
        u".windsurf"_s,
        // Models.
        u".lmstudio"_s,
        // Machines.
        u".vagrant.d"_s,
        u".minikube"_s,
        u".lima"_s,
        u".colima"_s,
        u".crc"_s,
        u".apptainer"_s,
        u".singularity"_s,
        u"VirtualBox VMs"_s,
        u"vmware"_s,
        // Games and Windows programs.
        u".steam"_s,
        u".wine"_s,
        u".PlayOnLinux"_s,
        u".minecraft"_s,
        u"Games"_s,
    };
    return names;
}

const QStringList &closedFolders()
{
    static const QStringList paths = {
        // The user's own, under the names that a desktop gives them in English.
        u"Desktop"_s,
        u"Documents"_s,
        u"Downloads"_s,
        u"Music"_s,
        u"Pictures"_s,
        u"Public"_s,
        u"Templates"_s,
        u"Videos"_s,
        // Libraries and mail.
        u"Zotero"_s,
        u"Calibre Library"_s,
        u"Mail"_s,
        u"Maildir"_s,
        u".mail"_s,
        // Folders shared with a cloud.
        u"Dropbox"_s,
        u"Nextcloud"_s,
        u"ownCloud"_s,
        u"OneDrive"_s,
        u"MEGA"_s,
        u"Insync"_s,
        u"Seafile"_s,
        // Keys and passwords.
        u".ssh"_s,
        u".gnupg"_s,
        u".pki"_s,
        u".password-store"_s,
        u".local/share/keyrings"_s,
        u".local/share/kwalletd"_s,
        u".local/share/pass"_s,
        u".config/Bitwarden"_s,
        u".config/1Password"_s,
        u".config/keepassxc"_s,
        u".config/sops"_s,
        u".config/rclone"_s,
        u".config/gh"_s,
        u".config/gcloud"_s,
        u".aws"_s,
        u".azure"_s,
        u".kube"_s,
    };
    return paths;
}

} // namespace

FastScanner::Allowlist allowlist(const QString &home, const QStringList &moved)
{
    FastScanner::Allowlist result{ { home, QSet<QString>(openFolders().begin(), openFolders().end()) } };
    const auto open = result.value(home) + FastScanner::quietAllowlist(home).value(home);
    for (const auto &path : moved) {
        const auto pieces = path.split(u'/');
        if (open.contains(pieces.first()))
            continue;
        auto folder = home;
        for (const auto &piece : pieces) {
            result[folder].insert(piece);
            folder += u'/' + piece;
        }
    }
    return result;
}

QSet<QString> protectedPaths(
    const QString &home, const LinuxUserFolders::Folders &folders, const LinuxBaseFolders &bases)
{
    QSet<QString> paths;
    const auto alsoMoved = [&paths](const QString &path, const QString &usual, const auto &base) {
        if (base && path.startsWith(usual))
            paths.insert(*base + u'/' + path.sliced(usual.size()));
    };
    for (const auto &path : closedFolders()) {
        paths.insert(home + u'/' + path);
        alsoMoved(path, u".config/"_s, bases.config);
        alsoMoved(path, u".local/share/"_s, bases.data);
    }
    for (const auto &path : folders.all())
        paths.insert(path);
    return paths;
}

} // namespace Quillbrook::LinuxQuietScope
