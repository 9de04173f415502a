#include "Catalogue/Linux/LinuxCatalogue.h"

// What games, editors, desktops and chats keep and can get back at a cost that the row states; after it, what
// would look harmless but is not wholly so. The index of GNOME's older search (".cache/tracker") is left out:
// present desktops do not build it again, and what a person had tagged may be in it.

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

const QList<HostRule> &mediaRules()
{
    // clang-format off
    static const QList<HostRule> table = {
        {
            .rule = {
                .id = u"chrome.aimodel"_s,
                .title = u"Chrome's AI model"_s,
                .what = u"A language model Chrome downloads for its built-in writing and summary features."_s,
                .regenerates = u"Chrome downloads it again when a feature asks for it — several gigabytes. Turning the feature off in Chrome keeps it away."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".config/google-chrome/OptGuideOnDeviceModel"_s, u"Chrome"_s },
            },
        },
        {
            .rule = {
                .id = u"steam.extras"_s,
                .title = u"Steam graphics files and unfinished downloads"_s,
                .what = u"Graphics files Steam prepared for your games, and game downloads that never finished."_s,
                .regenerates = u"Steam prepares or fetches them again, though not always by itself, and games may stutter until then. An unfinished download begins from zero."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".local/share/Steam/steamapps/shadercache"_s, u"Graphics files"_s },
                { u".local/share/Steam/steamapps/downloading"_s, u"Downloads"_s },
                { u".local/share/Steam/steamapps/temp"_s, u"Temporary files"_s },
                { u".steam/debian-installation/steamapps/shadercache"_s, u"Graphics files (Debian)"_s },
                { u".steam/debian-installation/steamapps/downloading"_s, u"Downloads (Debian)"_s },
                { u".steam/debian-installation/steamapps/temp"_s, u"Temporary files (Debian)"_s },
                { u".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/shadercache"_s, u"Graphics files (Flatpak)"_s },
                { u".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/downloading"_s, u"Downloads (Flatpak)"_s },
                { u".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/temp"_s, u"Temporary files (Flatpak)"_s },
                { u".var/app/com.valvesoftware.Steam/.cache/mesa_shader_cache"_s, u"Mesa (Flatpak)"_s },
                { u".var/app/com.valvesoftware.Steam/.cache/mesa_shader_cache_db"_s, u"Mesa, database (Flatpak)"_s },
                { u".var/app/com.valvesoftware.Steam/.cache/nvidia/GLCache"_s, u"NVIDIA (Flatpak)"_s },
                { u"snap/steam/common/.local/share/Steam/steamapps/shadercache"_s, u"Graphics files (Snap)"_s },
                { u"snap/steam/common/.local/share/Steam/steamapps/downloading"_s, u"Downloads (Snap)"_s },
                { u"snap/steam/common/.local/share/Steam/steamapps/temp"_s, u"Temporary files (Snap)"_s },
            },
        },
        {
            .rule = {
                .id = u"games.runners"_s,
                .title = u"Helpers for Windows games"_s,
                .what = u"Versions of Proton and Wine, and installers, that Steam, Lutris, Heroic and Bottles keep for running Windows programs."_s,
                .regenerates = u"Most can be downloaded again from the app, but not a version you built yourself, nor an installer you bought or put in by hand with its licence. A game set to use one will not start until then."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".local/share/Steam/compatibilitytools.d"_s, u"Steam"_s },
                { u".steam/debian-installation/compatibilitytools.d"_s, u"Steam (Debian)"_s },
                { u".var/app/com.valvesoftware.Steam/.local/share/Steam/compatibilitytools.d"_s, u"Steam (Flatpak)"_s },
                { u".local/share/lutris/runners"_s, u"Lutris"_s },
                { u".var/app/net.lutris.Lutris/data/lutris/runners"_s, u"Lutris (Flatpak)"_s },
                { u".cache/lutris"_s, u"Lutris, installers"_s },
                { u".config/heroic/tools"_s, u"Heroic"_s },
                { u".var/app/com.heroicgameslauncher.hgl/config/heroic/tools"_s, u"Heroic (Flatpak)"_s },
                { u".local/share/bottles/runners"_s, u"Bottles"_s },
                { u".var/app/com.usebottles.bottles/data/bottles/runners"_s, u"Bottles (Flatpak)"_s },
                { u".cache/winetricks"_s, u"Winetricks"_s },
                { u".cache/wine"_s, u"Wine"_s },
            },
        },
        {
            .rule = {
                .id = u"aur.builds"_s,
                .title = u"Packages built on this computer"_s,
                .what = u"Sources and finished packages kept by yay and paru after installing from the AUR."_s,
                .regenerates = u"Fetched and built again at the next update — slow for large programs. Changes you made to a build recipe are lost."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/yay"_s, u"yay"_s },
                { u".cache/paru/clone"_s, u"paru"_s },
            },
        },
        {
            .rule = {
                .id = u"android.sdk"_s,
                .title = u"Android building blocks"_s,
                .what = u"System images for test phones, compilers and sources downloaded for building Android apps."_s,
                .regenerates = u"Not restored by itself: Android Studio downloads them when you ask. Test phones that use a removed image will not start until then."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u"Android/Sdk/system-images"_s, u"System images"_s },
                { u"Android/Sdk/ndk"_s, u"Compilers"_s },
                { u"Android/Sdk/sources"_s, u"Sources"_s },
            },
        },
        {
            .rule = {
                .id = u"search.index"_s,
                .title = u"Desktop search index"_s,
                .what = u"The list of words and files that lets your desktop find things quickly."_s,
                .regenerates = u"Built again after you next log in. Searching finds little until it is done, which can take hours."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/tracker3"_s, u"GNOME"_s },
                { u".local/share/baloo"_s, u"KDE"_s },
            },
        },
        {
            .rule = {
                .id = u"video.proxies"_s,
                .title = u"Video editing stand-ins"_s,
                .what = u"Smaller copies of your clips that Kdenlive and Shotcut made so that editing runs smoothly."_s,
                .regenerates = u"Made again from the original clips, which takes as long as the first time. Playback is choppy until then."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/kdenlive/proxy"_s, u"Kdenlive"_s },
                { u".var/app/org.kde.kdenlive/cache/kdenlive/proxy"_s, u"Kdenlive (Flatpak)"_s },
                { u".local/share/Meltytech/Shotcut/proxies"_s, u"Shotcut"_s },
                { u".var/app/org.shotcut.Shotcut/data/Meltytech/Shotcut/proxies"_s, u"Shotcut (Flatpak)"_s },
            },
        },
        {
            .rule = {
                .id = u"backup.caches"_s,
                .title = u"Backup tools' notes"_s,
                .what = u"Lists that Borg, restic, Kopia and Déjà Dup keep about earlier backups so the next one runs faster. Not the backups themselves."_s,
                .regenerates = u"Rebuilt at the next backup, which will be much slower, needs the place of the backup and may ask for its password. A backup that was interrupted starts over."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/borg"_s, u"Borg"_s },
                { u".cache/restic"_s, u"restic"_s },
                { u".cache/deja-dup"_s, u"Déjà Dup"_s },
                { u".var/app/org.gnome.DejaDup/cache/deja-dup"_s, u"Déjà Dup (Flatpak)"_s },
                { u".cache/duplicity"_s, u"duplicity"_s },
                { u".cache/kopia"_s, u"Kopia"_s },
            },
        },
        {
            .rule = {
                .id = u"images.downloads"_s,
                .title = u"Downloaded machine images"_s,
                .what = u"Ready-made systems that Vagrant, minikube, Lima and Apptainer downloaded to start test machines from. Not the machines themselves."_s,
                .regenerates = u"Downloaded again when a machine is next created, often a gigabyte or more each. Ones you made yourself do not come back, and a Vagrant machine that builds on its image does not start without it."_s,
                .safety = Safety::careful,
                .staleDays = 60,
            },
            .locations = {
                { u".vagrant.d/boxes"_s, u"Vagrant"_s },
                { u".minikube/cache"_s, u"minikube"_s },
                { u".cache/lima"_s, u"Lima"_s },
                { u".apptainer/cache"_s, u"Apptainer"_s },
                { u".singularity/cache"_s, u"Singularity"_s },
            },
        },
        {
            .rule = {
                .id = u"telegram.cache"_s,
                .title = u"Telegram's saved media"_s,
                .what = u"Photos, videos and files Telegram has shown you, kept so that they open quickly."_s,
                .regenerates = u"Downloaded again when you scroll to them, as long as they are still in the chat."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".local/share/TelegramDesktop/tdata/user_data/cache"_s, u"Pictures and files"_s },
                { u".local/share/TelegramDesktop/tdata/user_data/media_cache"_s, u"Videos and music"_s },
                { u".var/app/org.telegram.desktop/data/TelegramDesktop/tdata/user_data/cache"_s, u"Pictures and files (Flatpak)"_s },
                { u".var/app/org.telegram.desktop/data/TelegramDesktop/tdata/user_data/media_cache"_s, u"Videos and music (Flatpak)"_s },
            },
        },
        {
            .rule = {
                .id = u"browser.offline"_s,
                .title = u"Copies websites keep for when you are offline"_s,
                .what = u"Pages and files that websites and web apps, Slack among them, store here so that they open without a connection."_s,
                .regenerates = u"Most come back as you use the site, some only with its next update. What you saved in a web app to use offline must be saved again. You stay signed in."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".config/google-chrome/Default/Service Worker/CacheStorage"_s, u"Chrome"_s },
                { u".var/app/com.google.Chrome/config/google-chrome/Default/Service Worker/CacheStorage"_s, u"Chrome (Flatpak)"_s },
                { u".config/chromium/Default/Service Worker/CacheStorage"_s, u"Chromium"_s },
                { u"snap/chromium/common/chromium/Default/Service Worker/CacheStorage"_s, u"Chromium (Snap)"_s },
                { u".config/BraveSoftware/Brave-Browser/Default/Service Worker/CacheStorage"_s, u"Brave"_s },
                { u".config/microsoft-edge/Default/Service Worker/CacheStorage"_s, u"Edge"_s },
                { u".config/vivaldi/Default/Service Worker/CacheStorage"_s, u"Vivaldi"_s },
                { u".config/Slack/Service Worker/CacheStorage"_s, u"Slack"_s },
                { u".var/app/com.slack.Slack/config/Slack/Service Worker/CacheStorage"_s, u"Slack (Flatpak)"_s },
            },
        },
        {
            .rule = {
                .id = u"ccache.results"_s,
                .title = u"Compiler results kept by ccache"_s,
                .what = u"Results that ccache keeps so that a compiler need not work everything out twice."_s,
                .regenerates = u"Worked out again on the next build. Each project is slow to build once. If you told ccache to use this folder by CCACHE_DIR, its settings are in here and go too."_s,
                .safety = Safety::careful,
            },
            .locations = {
                { u".cache/ccache"_s, u"ccache"_s },
            },
        },
        {
            .rule = {
                .id = u"flatpak.caches"_s,
                .title = u"Caches of Flatpak apps"_s,
                .what = u"What a Flatpak app keeps at hand so that it need not fetch or work it out again."_s,
                .regenerates = u"Comes back as you use the app. While the app runs it may be working with these files, so close it first. Apps known to keep more than copies here are left out."_s,
                .safety = Safety::safe,
            },
        },
    };
    // clang-format on
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
