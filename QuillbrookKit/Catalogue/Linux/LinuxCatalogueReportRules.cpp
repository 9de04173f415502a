#include "Catalogue/Linux/LinuxCatalogue.h"

// What is large and may be the only copy: shown, measured, never cleared.

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

const QList<HostRule> &reportRules()
{
    // clang-format off
    static const QList<HostRule> table = {
        {
            .rule = {
                .id = u"containers.storage"_s,
                .title = u"Containers (Docker, Podman and containerd)"_s,
                .what = u"Images, containers and volumes of Docker, Podman and containerd when they run without root. A database volume in here may be the only copy."_s,
                .regenerates = u"Deleting the folder destroys volumes permanently. Use `docker system prune`, `podman system prune` or `nerdctl system prune` instead: all keep your volumes unless you ask."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".local/share/docker"_s, u"Docker"_s },
                { u".local/share/containers"_s, u"Podman"_s },
                { u".local/share/containerd"_s, u"containerd"_s },
                { u".local/share/nerdctl"_s, u"containerd, volumes"_s },
            },
        },
        {
            .rule = {
                .id = u"vm.images"_s,
                .title = u"Virtual machines"_s,
                .what = u"Whole computers you set up in Boxes, virt-manager, VirtualBox, Rancher Desktop and similar apps, with everything installed in them."_s,
                .regenerates = u"Does not. Delete machines you no longer need in the app that made them."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".local/share/gnome-boxes/images"_s, u"Boxes"_s },
                { u".local/share/libvirt/images"_s, u"virt-manager"_s },
                { u"VirtualBox VMs"_s, u"VirtualBox"_s },
                { u".lima"_s, u"Lima"_s },
                { u".colima"_s, u"Colima"_s },
                { u".minikube/machines"_s, u"minikube"_s },
                { u"vmware"_s, u"VMware"_s },
                { u".local/share/rancher-desktop"_s, u"Rancher Desktop"_s },
                { u".crc"_s, u"CRC"_s },
            },
        },
        {
            .rule = {
                .id = u"wine.prefixes"_s,
                .title = u"Windows programs"_s,
                .what = u"Programs installed through Wine or Bottles, with their settings and saved documents."_s,
                .regenerates = u"Does not. Remove programs in the app that installed them."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".wine"_s, u"Wine"_s },
                { u".local/share/wineprefixes"_s, u"Winetricks"_s },
                { u".local/share/bottles/bottles"_s, u"Bottles"_s },
                { u".PlayOnLinux/wineprefix"_s, u"PlayOnLinux"_s },
            },
        },
        {
            .rule = {
                .id = u"games.installed"_s,
                .title = u"Games and their saves"_s,
                .what = u"Installed games and the Windows folders made for them, which can hold saved games that exist nowhere else."_s,
                .regenerates = u"Games can be installed again from their store. Saves, worlds and mods may not come back."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".local/share/Steam/steamapps/common"_s, u"Steam"_s },
                { u".local/share/Steam/steamapps/compatdata"_s, u"Steam, Windows folders"_s },
                { u".local/share/Steam/steamapps/workshop"_s, u"Steam, workshop"_s },
                { u".steam/debian-installation/steamapps/common"_s, u"Steam (Debian)"_s },
                { u".steam/debian-installation/steamapps/compatdata"_s, u"Steam (Debian), Windows folders"_s },
                { u".steam/debian-installation/steamapps/workshop"_s, u"Steam (Debian), workshop"_s },
                { u"Games"_s, u"Games folder"_s },
                { u".minecraft"_s, u"Minecraft"_s },
                { u".local/share/PrismLauncher/instances"_s, u"Prism Launcher"_s },
            },
        },
        {
            .rule = {
                .id = u"flatpak.apps"_s,
                .title = u"Apps installed with Flatpak"_s,
                .what = u"Apps installed for you alone, and the shared parts they run on."_s,
                .regenerates = u"Managed by Flatpak. Use `flatpak uninstall --unused`, which removes only shared parts that no app needs."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".local/share/flatpak"_s, u"Flatpak"_s },
            },
        },
        {
            .rule = {
                .id = u"sandbox.data"_s,
                .title = u"App data in Flatpak and Snap folders"_s,
                .what = u"Everything your Flatpak and Snap apps have saved for themselves: settings, logins, documents and caches alike."_s,
                .regenerates = u"Only the cached part does, and Quillbrook lists what it knows of that separately."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".var/app"_s, u"Flatpak"_s },
                { u"snap"_s, u"Snap"_s },
            },
        },
        {
            .rule = {
                .id = u"chat.history"_s,
                .title = u"Chats kept on this computer"_s,
                .what = u"Messages, photos and files from Signal, Element and Pidgin."_s,
                .regenerates = u"Does not. For some of these apps this is the only copy."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".config/Signal"_s, u"Signal"_s },
                { u".config/Element"_s, u"Element"_s },
                { u".purple/logs"_s, u"Pidgin"_s },
            },
        },
        {
            .rule = {
                .id = u"browser.profiles"_s,
                .title = u"Other browser profiles"_s,
                .what = u"Full profiles of Firefox, Brave, Edge, Chromium and others — history, logins, add-ons, site data. Not a cache, despite the size."_s,
                .regenerates = u"Does not. Your logins, history and open tabs would be gone."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".mozilla/firefox"_s, u"Firefox"_s },
                { u".config/mozilla/firefox"_s, u"Firefox, new place"_s },
                { u".config/BraveSoftware"_s, u"Brave"_s },
                { u".config/microsoft-edge"_s, u"Edge"_s },
                { u".config/chromium"_s, u"Chromium"_s },
                { u".config/vivaldi"_s, u"Vivaldi"_s },
                { u".config/opera"_s, u"Opera"_s },
                { u".librewolf"_s, u"LibreWolf"_s },
                { u".zen"_s, u"Zen"_s },
                { u".config/google-chrome-beta"_s, u"Chrome Beta"_s },
                { u".config/google-chrome-unstable"_s, u"Chrome Dev"_s },
                { u".config/vivaldi-snapshot"_s, u"Vivaldi Snapshot"_s },
            },
        },
        {
            .rule = {
                .id = u"dev.toolchains"_s,
                .title = u"Programming languages and tools"_s,
                .what = u"Versions of Rust, Node, Python, Java and other languages, and the tools you installed with them."_s,
                .regenerates = u"Can be installed again, but commands and projects that use one stop working at once. Remove versions with the tool that installed them."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".rustup/toolchains"_s, u"Rust"_s },
                { u".nvm/versions"_s, u"Node, by nvm"_s },
                { u".pyenv/versions"_s, u"Python, by pyenv"_s },
                { u".rbenv/versions"_s, u"Ruby"_s },
                { u".sdkman/candidates"_s, u"Java, by SDKMAN"_s },
                { u".ghcup/ghc"_s, u"Haskell"_s },
                { u".asdf/installs"_s, u"asdf"_s },
                { u".local/share/mise/installs"_s, u"mise"_s },
                { u".local/share/fnm/node-versions"_s, u"Node, by fnm"_s },
                { u".volta/tools"_s, u"Volta"_s },
                { u".jdks"_s, u"Java, by JetBrains"_s },
                { u".local/share/uv/python"_s, u"Python, by uv"_s },
                { u".local/share/uv/tools"_s, u"Tools, by uv"_s },
                { u".local/share/pipx/venvs"_s, u"Tools, by pipx"_s },
                { u".local/share/JetBrains/Toolbox/apps"_s, u"JetBrains Toolbox"_s },
            },
        },
        {
            .rule = {
                .id = u"editor.workspaces"_s,
                .title = u"Code editor memory"_s,
                .what = u"What VS Code, VSCodium, Cursor and Windsurf remember of each project, and what their add-ons keep for themselves: AI chats, earlier versions of files you edited, logins."_s,
                .regenerates = u"Does not."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".config/Code/User/workspaceStorage"_s, u"VS Code, projects"_s },
                { u".config/Code/User/History"_s, u"VS Code, earlier versions"_s },
                { u".config/VSCodium/User/workspaceStorage"_s, u"VSCodium, projects"_s },
                { u".config/VSCodium/User/History"_s, u"VSCodium, earlier versions"_s },
                { u".config/Cursor/User/workspaceStorage"_s, u"Cursor, projects"_s },
                { u".config/Cursor/User/History"_s, u"Cursor, earlier versions"_s },
                { u".config/Code/User/globalStorage"_s, u"VS Code, add-ons' own"_s },
                { u".config/VSCodium/User/globalStorage"_s, u"VSCodium, add-ons' own"_s },
                { u".config/Cursor/User/globalStorage"_s, u"Cursor, add-ons' own"_s },
                { u".config/Windsurf/User/workspaceStorage"_s, u"Windsurf, projects"_s },
                { u".config/Windsurf/User/History"_s, u"Windsurf, earlier versions"_s },
                { u".config/Windsurf/User/globalStorage"_s, u"Windsurf, add-ons' own"_s },
            },
        },
        {
            .rule = {
                .id = u"research.library"_s,
                .title = u"Book and paper libraries"_s,
                .what = u"Zotero and Calibre libraries. Possibly the only copy of your books, papers and notes."_s,
                .regenerates = u"Does not."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u"Zotero"_s, u"Zotero"_s },
                { u"Calibre Library"_s, u"Calibre"_s },
            },
        },
        {
            .rule = {
                .id = u"cloud.folders"_s,
                .title = u"Folders shared with a cloud"_s,
                .what = u"Files that Dropbox, Nextcloud, OneDrive or a similar service keeps the same on all your devices."_s,
                .regenerates = u"Deleting here deletes everywhere. Use the service's own setting to keep files online only."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u"Dropbox"_s, u"Dropbox"_s },
                { u"Nextcloud"_s, u"Nextcloud"_s },
                { u"ownCloud"_s, u"ownCloud"_s },
                { u"OneDrive"_s, u"OneDrive"_s },
                { u"MEGA"_s, u"MEGA"_s },
                { u"Insync"_s, u"Insync"_s },
                { u"Seafile"_s, u"Seafile"_s },
            },
        },
        {
            .rule = {
                .id = u"videos.folder"_s,
                .title = u"Videos"_s,
                .what = u"Films, screen recordings and clips. Recorders and video editors keep their big files here."_s,
                .regenerates = u"These are your files. Quillbrook will not touch them."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u"Videos"_s, u"Videos"_s },
            },
        },
        {
            .rule = {
                .id = u"editor.extensions"_s,
                .title = u"Code editor add-ons"_s,
                .what = u"Add-ons you installed in VS Code, VSCodium, Cursor and Windsurf."_s,
                .regenerates = u"Can be installed again from the editor. Remove the ones you no longer need there."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".vscode/extensions"_s, u"VS Code"_s },
                { u".vscode-oss/extensions"_s, u"VSCodium"_s },
                { u".cursor/extensions"_s, u"Cursor"_s },
                { u".windsurf/extensions"_s, u"Windsurf"_s },
            },
        },
        {
            .rule = {
                .id = u"tool.keepsakes"_s,
                .title = u"Caches with more than copies"_s,
                .what = u"Folders of pre-commit and rclone that look like caches. Changes to your code that were set aside, or files not yet uploaded, may be in here as the only copy."_s,
                .regenerates = u"Only in part. `pre-commit gc` clears what is no longer needed, and rclone clears files by itself once they are uploaded."_s,
                .safety = Safety::reportOnly,
            },
            .locations = {
                { u".cache/pre-commit"_s, u"pre-commit"_s },
                { u".cache/rclone"_s, u"rclone"_s },
            },
        },
    };
    // clang-format on
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
