#include "Catalogue/Linux/LinuxCatalogue.h"

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

// Offered as a further way to free space, so never one that is only shown.
const QList<HostRuleIds> &related()
{
    static const QList<HostRuleIds> table = {
        { u"linux.thumbnails"_s, { u"photo.previews"_s } },
        { u"photo.previews"_s, { u"linux.thumbnails"_s } },
        { u"linux.shaders"_s, { u"steam.extras"_s } },
        { u"steam.extras"_s, { u"linux.shaders"_s, u"games.runners"_s } },
        { u"games.runners"_s, { u"steam.extras"_s } },
        { u"browser.more"_s, { u"browser.caches"_s, u"apps.webcaches"_s } },
        { u"apps.webcaches"_s, { u"chat.caches"_s, u"telegram.cache"_s } },
        { u"telegram.cache"_s, { u"chat.caches"_s } },
        { u"packages.downloads"_s, { u"caches.devtools"_s, u"compiler.caches"_s } },
        { u"compiler.caches"_s, { u"packages.downloads"_s, u"debug.symbols"_s } },
        { u"debug.symbols"_s, { u"compiler.caches"_s } },
        { u"editor.caches"_s, { u"editor.indexes"_s } },
        { u"editor.indexes"_s, { u"editor.caches"_s } },
        { u"python.packages"_s, { u"python.envs"_s, u"caches.devtools"_s } },
        { u"python.envs"_s, { u"python.packages"_s } },
        { u"cargo.registry"_s, { u"compiler.caches"_s } },
        { u"go.caches"_s, { u"compiler.caches"_s } },
        { u"js.stores"_s, { u"npm.cacache"_s, u"packages.downloads"_s } },
        { u"java.packages"_s, { u"gradle.caches"_s, u"gradle.daemon"_s } },
        { u"language.packages"_s, { u"build.results"_s, u"packages.downloads"_s } },
        { u"build.results"_s, { u"compiler.caches"_s } },
        { u"android.sdk"_s, { u"android.avd"_s, u"gradle.caches"_s } },
        { u"ai.huggingface"_s, { u"ai.models"_s, u"ollama.models"_s } },
        { u"ai.models"_s, { u"ai.huggingface"_s, u"ollama.models"_s } },
        { u"chrome.aimodel"_s, { u"ai.models"_s } },
        { u"browser.offline"_s, { u"browser.caches"_s, u"browser.more"_s } },
        { u"ccache.results"_s, { u"compiler.caches"_s } },
        { u"ai.compiled"_s, { u"ai.models"_s, u"ai.huggingface"_s } },
        { u"board.tools"_s, { u"packages.downloads"_s } },
    };
    return table;
}

// Only rules of class `safe`, and only where every word of the preset stays true of them.
const QList<HostRuleIds> &presets()
{
    static const QList<HostRuleIds> table = {
        { u"preset.buildtools"_s, { u"packages.downloads"_s } },
        { u"preset.browsers"_s, { u"browser.more"_s } },
    };
    return table;
}

const QList<HostPreset> &ownPresets()
{
    // clang-format off
    static const QList<HostPreset> table = {
        {
            .id = u"preset.previews"_s,
            .title = u"Keep previews and desktop scratch files down"_s,
            .blurb = u"Little pictures and lists your file manager, photo album and desktop keep at hand. Made again as you go. Your photos are not touched."_s,
            .ruleIds = { u"linux.thumbnails"_s, u"photo.previews"_s, u"linux.desktop"_s },
        },
        {
            .id = u"preset.graphics"_s,
            .title = u"Keep graphics speed-up files down"_s,
            .blurb = u"Graphics code prepared for your games and apps. Prepared again as they need it, and a game may stutter a little the first time."_s,
            .ruleIds = { u"linux.shaders"_s },
        },
        {
            .id = u"preset.compilers"_s,
            .title = u"Keep compiler results in check"_s,
            .blurb = u"What compilers and code checkers remember so they need not work it out twice. The next build is slow once, and nothing is downloaded."_s,
            .ruleIds = { u"compiler.caches"_s },
        },
        {
            .id = u"preset.flatpak"_s,
            .title = u"Keep Flatpak app caches down"_s,
            .blurb = u"What Flatpak apps keep at hand so that they need not fetch it again. Only apps that are closed at the time are cleared."_s,
            .ruleIds = { u"flatpak.caches"_s },
        },
    };
    // clang-format on
    return table;
}

// Rules not listed are hot for the reason that holds for whatever is not recognised.
const QList<HostSuitability> &suitability()
{
    // clang-format off
    static const auto buildPath = u"Read on every build. Relocating it slows the build path."_s;
    static const auto play = u"Read and written while you play. Steam has its own way of keeping games on another drive."_s;
    static const QList<HostSuitability> table = {
        { u"python.packages"_s, u"Read on every install, and linked into your projects. On another drive every install would have to copy."_s },
        { u"python.envs"_s, u"Python environments remember where they were made. Moved, they stop working."_s },
        { u"cargo.registry"_s, buildPath },
        { u"go.caches"_s, buildPath },
        { u"js.stores"_s, buildPath },
        { u"java.packages"_s, buildPath },
        { u"language.packages"_s, buildPath },
        { u"ccache.results"_s, buildPath },
        { u"android.sdk"_s, buildPath },
        { u"board.tools"_s, buildPath },
        { u"build.results"_s, u"Written constantly during every build. On a slower volume it would make each build slower, permanently."_s },
        { u"editor.indexes"_s, u"The editor reads and writes this continuously while it runs."_s },
        { u"ai.huggingface"_s, std::nullopt },
        { u"ai.models"_s, std::nullopt },
        { u"steam.extras"_s, play },
        { u"search.index"_s, u"The desktop reads and writes this all the time."_s },
        { u"video.proxies"_s, u"Read on every edit. On a slower drive playback would stutter."_s },
        { u"containers.storage"_s, u"Read and written while running. Relocating risks corruption."_s },
        { u"vm.images"_s, u"Read and written while a machine runs. Relocating risks corruption."_s },
        { u"wine.prefixes"_s, u"Windows programs read and write this while they run."_s },
        { u"games.installed"_s, play },
        { u"flatpak.apps"_s, u"Apps run straight from here."_s },
        { u"sandbox.data"_s, u"Apps read and write this continuously while they run."_s },
        { u"chat.history"_s, u"The app writes to this constantly while it is open."_s },
        { u"browser.profiles"_s, u"The browser reads and writes this profile continuously while it runs."_s },
        { u"dev.toolchains"_s, u"Programs run straight from here."_s },
        { u"editor.workspaces"_s, u"The editor writes to this constantly while it is open."_s },
        { u"research.library"_s, u"The library is a database that its program keeps open."_s },
        { u"cloud.folders"_s, u"The service watches this folder. Moved away, its files could be taken for deleted."_s },
        { u"videos.folder"_s, std::nullopt },
        { u"editor.extensions"_s, u"Programs run straight from here."_s },
    };
    // clang-format on
    return table;
}

// The first row that fits a finding's rule and location counts. Stores whose members are named by hashes say
// nothing to anybody and are not listed.
const QList<HostItemisation> &itemisations()
{
    using Naming = HostItemNaming;
    // clang-format off
    static const auto shown = u"Quillbrook only shows this one."_s;
    static const QList<HostItemisation> table = {
        { .ruleId = u"python.envs"_s, .paths = { u".cache/pypoetry/virtualenvs"_s, u".local/share/virtualenvs"_s }, .naming = Naming::hashedEnvironment, .detail = u"Python environment"_s },
        { .ruleId = u"python.envs"_s, .detail = u"Python environment"_s },
        {
            .ruleId = u"editor.indexes"_s,
            .paths = {
                u".cache/JetBrains"_s,
                u".cache/Google"_s,
                u".var/app/com.jetbrains.IntelliJ-IDEA-Community/cache/JetBrains"_s,
                u".var/app/com.jetbrains.PyCharm-Community/cache/JetBrains"_s,
                u".var/app/com.google.AndroidStudio/cache/Google"_s,
            },
            .naming = Naming::productAndVersion,
            .detail = u"Code editor index"_s,
        },
        { .ruleId = u"ai.huggingface"_s, .paths = { u".cache/huggingface/hub"_s }, .naming = Naming::hubRepository, .detail = u"AI model"_s },
        { .ruleId = u"ai.huggingface"_s, .paths = { u".cache/huggingface/datasets"_s }, .naming = Naming::dataSet, .detail = u"Data set"_s },
        {
            .ruleId = u"ai.models"_s,
            .paths = {
                u".lmstudio/models"_s,
                u".cache/lm-studio/models"_s,
                u".var/app/com.jeffser.Alpaca/data/.ollama/models"_s,
                u".cache/torch/hub"_s,
                u".cache/whisper"_s,
                u".cache/llama.cpp"_s,
            },
            .detail = u"AI model"_s,
        },
        { .ruleId = u"board.tools"_s, .detail = u"Tool for programming boards"_s },
        { .ruleId = u"editor.extensions"_s, .detail = u"Code editor add-on"_s, .blockedReason = shown },
        {
            .ruleId = u"steam.extras"_s,
            .paths = {
                u".local/share/Steam/steamapps/shadercache"_s,
                u".steam/debian-installation/steamapps/shadercache"_s,
                u".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/shadercache"_s,
                u"snap/steam/common/.local/share/Steam/steamapps/shadercache"_s,
            },
            .naming = Naming::steamGame,
            .detail = u"Graphics files"_s,
        },
        {
            .ruleId = u"steam.extras"_s,
            .paths = {
                u".local/share/Steam/steamapps/downloading"_s,
                u".steam/debian-installation/steamapps/downloading"_s,
                u".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/downloading"_s,
                u"snap/steam/common/.local/share/Steam/steamapps/downloading"_s,
            },
            .naming = Naming::steamGame,
            .detail = u"Unfinished download"_s,
        },
        { .ruleId = u"games.runners"_s, .detail = u"Helper for Windows games"_s },
        { .ruleId = u"aur.builds"_s, .detail = u"Package build"_s },
        { .ruleId = u"android.sdk"_s, .paths = { u"Android/Sdk/system-images"_s }, .detail = u"Android system image"_s },
        { .ruleId = u"android.sdk"_s, .detail = u"Android building block"_s },
        { .ruleId = u"images.downloads"_s, .paths = { u".vagrant.d/boxes"_s }, .naming = Naming::vagrantBox, .detail = u"Machine image"_s },
        { .ruleId = u"images.downloads"_s, .detail = u"Machine image"_s },
        {
            .ruleId = u"vm.images"_s,
            .paths = {
                u".local/share/gnome-boxes/images"_s,
                u".local/share/libvirt/images"_s,
                u"VirtualBox VMs"_s,
                u".lima"_s,
                u".colima"_s,
                u".minikube/machines"_s,
                u"vmware"_s,
            },
            .detail = u"Virtual machine"_s,
            .blockedReason = shown,
        },
        { .ruleId = u"wine.prefixes"_s, .detail = u"Windows environment"_s, .blockedReason = shown },
        { .ruleId = u"games.installed"_s, .detail = u"Game"_s, .blockedReason = shown },
        { .ruleId = u"dev.toolchains"_s, .detail = u"Installed version"_s, .blockedReason = shown },
        { .ruleId = u"sandbox.data"_s, .paths = { u".var/app"_s }, .naming = Naming::flatpakApplication, .detail = u"Flatpak app data"_s, .blockedReason = shown },
        { .ruleId = u"sandbox.data"_s, .paths = { u"snap"_s }, .detail = u"Snap app data"_s, .blockedReason = shown },
    };
    // clang-format on
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
