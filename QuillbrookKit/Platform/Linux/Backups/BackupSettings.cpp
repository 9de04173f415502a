#include "Platform/Linux/Backups/BackupSettings.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

namespace Quillbrook::BackupSettings {

using namespace Qt::StringLiterals;
using Json = nlohmann::json;

namespace {

// Programs that copy to another place, by the names they are started by.
constexpr std::array<std::string_view, 13> backupPrograms{ "autorestic", "backintime", "borg", "borgmatic",
    "duplicity", "duply", "kopia", "rdiff-backup", "restic", "resticprofile", "rsnapshot", "rsync",
    "rustic" };

// A database in memory has no log beside it; the two bytes in its header that say it has one would keep it
// from being opened.
constexpr qsizetype logVersionsAt = 18;
constexpr qsizetype headerBytes = 100;

// Steps of the database machine, far more than looking for one row takes.
constexpr int enoughSteps = 100'000;

Json parsed(QByteArrayView json)
{
    return Json::parse(json.begin(), json.end(), nullptr, false);
}

// Settings are texts in this file, whatever they say.
std::string text(const Json &settings, const char *key)
{
    const auto found = settings.find(key);
    return found != settings.end() && found->is_string() ? found->get<std::string>() : std::string();
}

int number(const Json &settings, const char *key)
{
    return std::max(QByteArray::fromStdString(text(settings, key)).toInt(), 0);
}

bool isTrue(const Json &settings, const char *key)
{
    return text(settings, key) == "true";
}

// Rules of what to leave out; one that begins with a plus sign takes in.
bool takesIn(const Json &settings, const std::string &folder)
{
    const auto rules = settings.find("exclude");
    return rules != settings.end() && rules->is_array()
        && std::ranges::any_of(*rules, [&](const Json &rule) { return rule == "+ " + folder + "/**"; });
}

bool isBackupProgram(const QString &word)
{
    const auto path = word.toStdString();
    return std::ranges::find(backupPrograms, std::string_view(path).substr(path.find_last_of('/') + 1))
        != backupPrograms.end();
}

// The value of a line of KEY=VALUE for KEY; empty for another line.
QByteArray valueOf(const QByteArray &line, QByteArrayView key)
{
    const auto equals = line.indexOf('=');
    return equals > 0 && line.first(equals).trimmed() == key ? line.sliced(equals + 1).trimmed()
                                                             : QByteArray();
}

// Whether a word of a command names a place, and whether the home folder lies in it.
bool namesPlace(const QString &word)
{
    return word.startsWith(u'/') || word.startsWith(u'~') || word.startsWith(u"%h"_s)
        || word.startsWith(u"$HOME"_s) || word.startsWith(u"${HOME}"_s);
}

bool covers(QString word, const QString &home)
{
    while (word.size() > 1 && word.endsWith(u'/'))
        word.chop(1);
    const QStringList names{ u"/"_s, u"~"_s, u"%h"_s, u"$HOME"_s, u"${HOME}"_s, home };
    return names.contains(word) || home.startsWith(word + u'/');
}

// A program that is told what to take has to take the home folder; of one that is told nothing its settings
// decide. What merely copies is told always.
bool backsUp(const QString &command, const QString &home)
{
    // A script between quotes is words too, and signs before the program say how it is started.
    static const QRegularExpression separators(u"[\\s'\"`;|&()@:+!=]+"_s);
    const auto words = command.split(separators, Qt::SkipEmptyParts);
    if (std::ranges::none_of(words, isBackupProgram))
        return false;
    bool isTold = std::ranges::any_of(
        words, [](const QString &word) { return isBackupProgram(word) && word.endsWith(u"rsync"_s); });
    for (const auto &word : words.sliced(1)) {
        if (!namesPlace(word) || isBackupProgram(word))
            continue;
        if (covers(word, home))
            return true;
        isTold = true;
    }
    return !isTold;
}

} // namespace

bool isTextWithContent(QByteArrayView value)
{
    const auto text = value.trimmed();
    return text.size() > 2 && (text.front() == '\'' || text.front() == '"') && text.back() == text.front();
}

bool dejaDupHasRun(const QByteArray &keyFile)
{
    QByteArray group;
    for (const auto &written : keyFile.split('\n')) {
        const auto line = written.trimmed();
        if (line.startsWith('['))
            group = line;
        else if (group == "[org/gnome/deja-dup]" && isTextWithContent(valueOf(line, "last-backup")))
            return true;
    }
    return false;
}

bool pikaHasBackups(QByteArrayView json)
{
    const auto backups = parsed(json);
    return backups.is_structured() && !backups.empty();
}

bool vortaHasRepositories(QByteArray database)
{
    if (database.size() < headerBytes)
        return false;
    std::fill_n(database.begin() + logVersionsAt, 2, char{ 1 });
    sqlite3 *opened = nullptr;
    const auto result = sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> connection(opened, sqlite3_close);
    if (result != SQLITE_OK)
        return false;
    // What a file says about views and functions is not trusted.
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_progress_handler(
        opened, enoughSteps, [](void *) { return 1; }, nullptr);
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_deserialize(opened, "main", reinterpret_cast<unsigned char *>(database.data()),
            database.size(), database.size(), SQLITE_DESERIALIZE_READONLY)
            != SQLITE_OK
        || sqlite3_prepare_v2(opened, "SELECT 1 FROM repomodel LIMIT 1", -1, &prepared, nullptr) != SQLITE_OK)
        return false;
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(prepared, sqlite3_finalize);
    return sqlite3_step(prepared) == SQLITE_ROW;
}

bool backInTimeHasPlace(const QByteArray &text)
{
    return std::ranges::any_of(text.split('\n'), [](const QByteArray &line) {
        const auto key = line.first(std::max<qsizetype>(line.indexOf('='), 0)).trimmed();
        const bool isPlace = key.endsWith(".snapshots.path") || key.endsWith(".snapshots.ssh.host");
        return key.startsWith("profile") && isPlace && !valueOf(line, key).isEmpty();
    });
}

Timeshift timeshift(QByteArrayView json, const std::string &home)
{
    const auto settings = parsed(json);
    if (!settings.is_object() || text(settings, "backup_device_uuid").empty())
        return {};
    if (!isTrue(settings, "btrfs_mode"))
        return { .copiesHome = takesIn(settings, home) };
    const bool isHomeIn
        = isTrue(settings, "include_btrfs_home") || isTrue(settings, "include_btrfs_home_for_backup");
    return { .homeSnapshots = isHomeIn ? number(settings, "snapshot_count") : 0 };
}

bool startsBackup(const QByteArray &unit, const std::string &home)
{
    return std::ranges::any_of(unit.split('\n'), [&](const QByteArray &line) {
        return backsUp(QString::fromUtf8(valueOf(line, "ExecStart")), QString::fromStdString(home));
    });
}

std::string serviceOf(std::string_view timer)
{
    constexpr std::string_view ending = ".timer";
    if (!timer.ends_with(ending) || timer.size() == ending.size())
        return {};
    const auto name = timer.substr(0, timer.size() - ending.size());
    const auto at = name.find('@');
    return std::string(at == std::string_view::npos ? name : name.substr(0, at + 1)) + ".service";
}

} // namespace Quillbrook::BackupSettings
