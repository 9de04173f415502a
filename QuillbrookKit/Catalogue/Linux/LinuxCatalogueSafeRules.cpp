#include "Catalogue/Linux/LinuxCatalogue.h"

// What does not belong here: a folder that can hold a setting or a file of the user's, whatever its name
// (ccache's, for one, holds its settings where CCACHE_DIR points at it); what a program or project links to
// or runs from; and what comes back only after someone asks for it.

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

const QList<HostRule> &safeRules()
{
    // clang-format off
    static const QList<HostRule> table = {
        {
            .rule = {
                .id = u"linux.thumbnails"_s,
                .title = u"Small previews of your pictures"_s,
                .what = u"Little pictures the file manager makes so that folders of photos and videos open quickly."_s,
                .regenerates = u"Made again when you next open each folder. Your photos and videos are not touched."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/thumbnails"_s, u"Present place"_s },
                { u".thumbnails"_s, u"Old place"_s },
            },
        },
        {
            .rule = {
                .id = u"linux.shaders"_s,
                .title = u"Graphics speed-up files"_s,
                .what = u"Pieces of graphics code prepared for your graphics card, so that apps and games start smoothly."_s,
                .regenerates = u"Prepared again as apps need them. Games may stutter for a while the first time."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/mesa_shader_cache"_s, u"Mesa"_s },
                { u".cache/mesa_shader_cache_db"_s, u"Mesa, database"_s },
                { u".cache/mesa_shader_cache_sf"_s, u"Mesa, single file"_s },
                { u".cache/nvidia/GLCache"_s, u"NVIDIA"_s },
                { u".nv/GLCache"_s, u"NVIDIA, old place"_s },
                { u".nv/ComputeCache"_s, u"NVIDIA, computing"_s },
            },
        },
        {
            .rule = {
                .id = u"linux.desktop"_s,
                .title = u"Desktop scratch files"_s,
                .what = u"Lists and pictures your desktop keeps at hand: fonts, media plug-ins, screenshots from the app store."_s,
                .regenerates = u"Gathered again as you go. The app store's pictures need a connection."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/fontconfig"_s, u"Fonts"_s },
                { u".cache/gstreamer-1.0"_s, u"Media plug-ins"_s },
                { u".cache/gnome-software"_s, u"App store"_s },
            },
        },
        {
            .rule = {
                .id = u"browser.more"_s,
                .title = u"Saved web pages from other browsers"_s,
                .what = u"Cached pages, images and scripts from Chromium, Vivaldi, Opera, LibreWolf and Zen."_s,
                .regenerates = u"Rebuilt as you browse. Sites may load a little slower once, and you stay signed in."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/chromium"_s, u"Chromium"_s },
                { u"snap/chromium/common/.cache/chromium"_s, u"Chromium (Snap)"_s },
                { u".var/app/org.chromium.Chromium/cache/chromium"_s, u"Chromium (Flatpak)"_s },
                { u".var/app/io.github.ungoogled_software.ungoogled_chromium/cache/chromium"_s, u"Ungoogled Chromium (Flatpak)"_s },
                { u".cache/vivaldi"_s, u"Vivaldi"_s },
                { u"snap/vivaldi/common/.cache/vivaldi"_s, u"Vivaldi (Snap)"_s },
                { u".var/app/com.vivaldi.Vivaldi/cache/vivaldi"_s, u"Vivaldi (Flatpak)"_s },
                { u".cache/opera"_s, u"Opera"_s },
                { u"snap/opera/common/.cache/opera"_s, u"Opera (Snap)"_s },
                { u".cache/librewolf"_s, u"LibreWolf"_s },
                { u".var/app/io.gitlab.librewolf-community/cache/librewolf"_s, u"LibreWolf (Flatpak)"_s },
                { u".cache/zen"_s, u"Zen"_s },
                { u".var/app/app.zen_browser.zen/cache/zen"_s, u"Zen (Flatpak)"_s },
            },
        },
        {
            .rule = {
                .id = u"editor.caches"_s,
                .title = u"Code editor scratch files"_s,
                .what = u"Prepared program parts and downloaded add-on packages that VS Code, VSCodium, Cursor and Windsurf keep."_s,
                .regenerates = u"Made again as you work. Your settings, add-ons and unsaved files stay."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".config/Code/Cache"_s, u"VS Code, web files"_s },
                { u".config/Code/CachedData"_s, u"VS Code, program parts"_s },
                { u".config/Code/CachedExtensionVSIXs"_s, u"VS Code, add-on downloads"_s },
                { u".config/Code/Code Cache"_s, u"VS Code, scripts"_s },
                { u".config/Code - Insiders/Cache"_s, u"VS Code Insiders, web files"_s },
                { u".config/Code - Insiders/CachedData"_s, u"VS Code Insiders, program parts"_s },
                { u".config/Code - Insiders/CachedExtensionVSIXs"_s, u"VS Code Insiders, add-on downloads"_s },
                { u".config/Code - Insiders/Code Cache"_s, u"VS Code Insiders, scripts"_s },
                { u".config/VSCodium/Cache"_s, u"VSCodium, web files"_s },
                { u".config/VSCodium/CachedData"_s, u"VSCodium, program parts"_s },
                { u".config/VSCodium/CachedExtensionVSIXs"_s, u"VSCodium, add-on downloads"_s },
                { u".config/VSCodium/Code Cache"_s, u"VSCodium, scripts"_s },
                { u".config/Cursor/Cache"_s, u"Cursor, web files"_s },
                { u".config/Cursor/CachedData"_s, u"Cursor, program parts"_s },
                { u".config/Cursor/CachedExtensionVSIXs"_s, u"Cursor, add-on downloads"_s },
                { u".config/Cursor/Code Cache"_s, u"Cursor, scripts"_s },
                { u".config/Windsurf/Cache"_s, u"Windsurf, web files"_s },
                { u".config/Windsurf/CachedData"_s, u"Windsurf, program parts"_s },
                { u".config/Windsurf/CachedExtensionVSIXs"_s, u"Windsurf, add-on downloads"_s },
                { u".config/Windsurf/Code Cache"_s, u"Windsurf, scripts"_s },
                { u".var/app/com.visualstudio.code/config/Code/Cache"_s, u"VS Code (Flatpak), web files"_s },
                { u".var/app/com.visualstudio.code/config/Code/CachedData"_s, u"VS Code (Flatpak), program parts"_s },
                { u".var/app/com.visualstudio.code/config/Code/CachedExtensionVSIXs"_s, u"VS Code (Flatpak), add-on downloads"_s },
                { u".var/app/com.visualstudio.code/config/Code/Code Cache"_s, u"VS Code (Flatpak), scripts"_s },
                { u".var/app/com.vscodium.codium/config/VSCodium/Cache"_s, u"VSCodium (Flatpak), web files"_s },
                { u".var/app/com.vscodium.codium/config/VSCodium/CachedData"_s, u"VSCodium (Flatpak), program parts"_s },
                { u".var/app/com.vscodium.codium/config/VSCodium/CachedExtensionVSIXs"_s, u"VSCodium (Flatpak), add-on downloads"_s },
                { u".var/app/com.vscodium.codium/config/VSCodium/Code Cache"_s, u"VSCodium (Flatpak), scripts"_s },
            },
        },
        {
            .rule = {
                .id = u"compiler.caches"_s,
                .title = u"Shortcuts for building and checking code"_s,
                .what = u"Results that compilers and code checkers keep so they need not work everything out twice."_s,
                .regenerates = u"Worked out again on the next build. Each project is slow to build once, and nothing is downloaded."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/sccache"_s, u"sccache"_s },
                { u".cache/golangci-lint"_s, u"golangci-lint"_s },
                { u".cache/gopls"_s, u"gopls"_s },
                { u".cache/staticcheck"_s, u"staticcheck"_s },
                { u".dartServer/.analysis-driver"_s, u"Dart"_s },
                { u".julia/compiled"_s, u"Julia"_s },
            },
        },
        {
            .rule = {
                .id = u"packages.downloads"_s,
                .title = u"More programming tool downloads"_s,
                .what = u"Copies of packages that Yarn, Composer, Poetry, Electron and other tools keep so they need not download them twice."_s,
                .regenerates = u"Each tool downloads what it needs next time. Needs a network connection."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/yarn"_s, u"Yarn"_s },
                { u".cache/composer"_s, u"Composer"_s },
                { u".composer/cache"_s, u"Composer, old place"_s },
                { u".cache/pypoetry/cache"_s, u"Poetry"_s },
                { u".cache/pypoetry/artifacts"_s, u"Poetry, archives"_s },
                { u".cache/pipenv"_s, u"Pipenv"_s },
                { u".cache/electron"_s, u"Electron"_s },
                { u".cache/electron-builder"_s, u"Electron Builder"_s },
                { u".cache/bazelisk"_s, u"Bazelisk"_s },
                { u".local/share/NuGet/v3-cache"_s, u"NuGet"_s },
                { u".local/share/NuGet/http-cache"_s, u"NuGet, web files"_s },
                { u".opam/download-cache"_s, u"opam"_s },
                { u".ghcup/cache"_s, u"GHCup"_s },
                { u".arduino15/staging"_s, u"Arduino"_s },
                { u".platformio/.cache"_s, u"PlatformIO"_s },
                { u".cache/nix"_s, u"Nix"_s },
            },
        },
        {
            .rule = {
                .id = u"photo.previews"_s,
                .title = u"Photo album previews"_s,
                .what = u"Small versions of your photos that Shotwell keeps to show albums quickly."_s,
                .regenerates = u"Made again as you browse the album. Your photos are not touched."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/shotwell/thumbs"_s, u"Shotwell"_s },
                { u".var/app/org.gnome.Shotwell/cache/shotwell/thumbs"_s, u"Shotwell (Flatpak)"_s },
            },
        },
        {
            .rule = {
                .id = u"apps.webcaches"_s,
                .title = u"Saved parts of mail and chat apps"_s,
                .what = u"Cached pictures and page parts from Thunderbird, Element, Slack and Discord."_s,
                .regenerates = u"Downloaded again as you use the app. Messages and logins stay."_s,
                .safety = Safety::safe,
            },
            .locations = {
                { u".cache/thunderbird"_s, u"Thunderbird"_s },
                { u".var/app/org.mozilla.Thunderbird/cache/thunderbird"_s, u"Thunderbird (Flatpak)"_s },
                { u"snap/thunderbird/common/.cache/thunderbird"_s, u"Thunderbird (Snap)"_s },
                { u".config/Slack/Code Cache"_s, u"Slack, scripts"_s },
                { u".var/app/com.slack.Slack/config/Slack/Code Cache"_s, u"Slack (Flatpak), scripts"_s },
                { u".config/discord/Code Cache"_s, u"Discord, scripts"_s },
                { u".var/app/com.discordapp.Discord/config/discord/Code Cache"_s, u"Discord (Flatpak), scripts"_s },
                { u".config/Element/Cache"_s, u"Element"_s },
                { u".config/Element/Code Cache"_s, u"Element, scripts"_s },
                { u".var/app/im.riot.Riot/config/Element/Cache"_s, u"Element (Flatpak)"_s },
            },
        },
    };
    // clang-format on
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
