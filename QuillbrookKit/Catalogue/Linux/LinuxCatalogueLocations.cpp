#include "Catalogue/Linux/LinuxCatalogue.h"

// Places where a built-in rule's data lies on Linux, so that every word of the rule stays true of them. Left
// out for that reason:
//   - Browsers' "Service Worker/CacheStorage" from "browser.serviceworkers": without the registrations beside
//     it, which belong to add-ons too, a site fills it again only with its next update, and it may hold what
//     the user saved to read offline. A rule of its own ("browser.offline") tells that.
//   - The browsers of test tools from "caches.devtools": they are not fetched on next use.
//   - Podcasts from "music.offline": an old episode may have left its feed.

namespace Quillbrook::LinuxCatalogue {

using namespace Qt::StringLiterals;

const QList<HostRuleLocations> &locations()
{
    static const QList<HostRuleLocations> table = {
        { u"caches.devtools"_s,
            {
                { u".cache/pip"_s, u"pip"_s },
                { u".cache/Homebrew"_s, u"Homebrew"_s },
                { u".cache/node-gyp"_s, u"node-gyp"_s },
                { u".cache/typescript"_s, u"TypeScript"_s },
            } },
        { u"trash"_s,
            {
                { u".local/share/Trash/files"_s, u"What you threw away"_s },
                { u".local/share/Trash/expunged"_s, u"Left over from emptying it"_s },
            } },
        { u"android.avd"_s,
            {
                { u".config/.android/avd"_s, u"avd in .config"_s },
            } },
        { u"browser.caches"_s,
            {
                { u".cache/google-chrome"_s, u"Chrome"_s },
                { u".cache/google-chrome-beta"_s, u"Chrome Beta"_s },
                { u".cache/google-chrome-unstable"_s, u"Chrome Dev"_s },
                { u".var/app/com.google.Chrome/cache/google-chrome"_s, u"Chrome (Flatpak)"_s },
                { u".cache/mozilla/firefox"_s, u"Firefox"_s },
                { u".var/app/org.mozilla.firefox/cache/mozilla/firefox"_s, u"Firefox (Flatpak)"_s },
                { u"snap/firefox/common/.cache/mozilla/firefox"_s, u"Firefox (Snap)"_s },
                { u".cache/microsoft-edge"_s, u"Edge"_s },
                { u".var/app/com.microsoft.Edge/cache/microsoft-edge"_s, u"Edge (Flatpak)"_s },
                { u".cache/BraveSoftware"_s, u"Brave"_s },
                { u".var/app/com.brave.Browser/cache/BraveSoftware"_s, u"Brave (Flatpak)"_s },
                { u"snap/brave/common/.cache/BraveSoftware"_s, u"Brave (Snap)"_s },
            } },
        { u"chat.caches"_s,
            {
                { u".config/Slack/Cache"_s, u"Slack"_s },
                { u".var/app/com.slack.Slack/config/Slack/Cache"_s, u"Slack (Flatpak)"_s },
                { u".config/discord/Cache"_s, u"Discord"_s },
                { u".config/discordptb/Cache"_s, u"Discord PTB"_s },
                { u".config/discordcanary/Cache"_s, u"Discord Canary"_s },
                { u".var/app/com.discordapp.Discord/config/discord/Cache"_s, u"Discord (Flatpak)"_s },
                { u".config/Microsoft/Microsoft Teams/Cache"_s, u"Teams"_s },
                { u".cache/zoom"_s, u"Zoom"_s },
            } },
        { u"music.offline"_s,
            {
                { u".cache/spotify/Storage"_s, u"Spotify"_s },
                { u".var/app/com.spotify.Client/cache/spotify/Storage"_s, u"Spotify (Flatpak)"_s },
                { u"snap/spotify/common/.cache/spotify/Storage"_s, u"Spotify (Snap)"_s },
            } },
        { u"docker.data"_s,
            {
                { u".docker/desktop/vms"_s, u"Docker Desktop"_s },
            } },
        { u"chrome.profile"_s,
            {
                { u".config/google-chrome"_s, u"Chrome"_s },
            } },
        { u"mail.data"_s,
            {
                { u".thunderbird"_s, u"Thunderbird"_s },
                { u".local/share/evolution/mail"_s, u"Evolution"_s },
                { u".cache/evolution/mail"_s, u"Evolution, from the server"_s },
                { u".local/share/geary"_s, u"Geary"_s },
                { u".local/share/akonadi"_s, u"KMail"_s },
                { u".local/share/local-mail"_s, u"KMail, local folders"_s },
                { u"Mail"_s, u"Mail folder"_s },
                { u"Maildir"_s, u"Maildir"_s },
                { u".mail"_s, u"Hidden mail folder"_s },
            } },
    };
    return table;
}

} // namespace Quillbrook::LinuxCatalogue
