#include "Platform/Linux/Processes/RunningPrograms.h"

#include "StandardisedPath.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QUuid>

#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view deletedMark = " (deleted)";
constexpr size_t longestFile = 262'144;
constexpr int busMilliseconds = 1000;

std::string content(const std::string &path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return {};
    std::string bytes;
    std::array<char, 8192> chunk{};
    for (ssize_t count = 0; bytes.size() < longestFile; bytes.append(chunk.data(), size_t(count)))
        if ((count = ::read(file, chunk.data(), chunk.size())) <= 0)
            break;
    ::close(file);
    return bytes;
}

std::string linkTarget(const std::string &path)
{
    std::array<char, 4096> target{};
    const auto length = ::readlink(path.c_str(), target.data(), target.size());
    std::string found(target.data(), length > 0 ? size_t(length) : 0);
    // An upgrade replaces a file while it runs.
    if (found.ends_with(deletedMark))
        found.resize(found.size() - deletedMark.size());
    return found;
}

std::vector<std::string> pieces(const std::string &text, char separator)
{
    std::vector<std::string> found(1);
    for (const char letter : text)
        if (letter == separator)
            found.emplace_back();
        else
            found.back() += letter;
    return found;
}

// systemd writes "\x2d" for a dash in a name.
QString unescaped(const QString &text)
{
    QByteArray bytes;
    const auto raw = text.toUtf8();
    for (qsizetype index = 0; index < raw.size(); ++index) {
        bool isNumber = false;
        const auto code = raw.mid(index, 2) == "\\x" ? raw.mid(index + 2, 2).toInt(&isNumber, 16) : 0;
        bytes.append(isNumber ? char(code) : raw[index]);
        index += isNumber ? 3 : 0;
    }
    return QString::fromUtf8(bytes);
}

bool isOwn(const std::string &process)
{
    struct stat status = {};
    if (::stat(process.c_str(), &status) != 0)
        return false;
    if (status.st_uid != 0 || ::getuid() == 0)
        return status.st_uid == ::getuid();
    // What a program that keeps its memory to itself is told of belongs to root; who runs it stands inside.
    const auto user = "\nUid:\t" + std::to_string(::getuid()) + '\t';
    return content(process + "/status").find(user) != std::string::npos;
}

void addProcess(const std::string &folder, RunningPrograms &found)
{
    const auto add = [&](const std::string &path) {
        if (path.starts_with('/'))
            found.files.insert(path);
    };
    // Of one that has ended and is only waited for, nothing of this is told.
    add(linkTarget(folder + "/exe"));
    const auto arguments = pieces(content(folder + "/cmdline"), '\0');
    const auto place = linkTarget(folder + "/cwd");
    for (size_t index = 0; index < arguments.size() && index < 2; ++index) {
        const auto &argument = arguments[index];
        // A script started as "./script" is known by that alone.
        const bool isRelative = !argument.empty() && argument.front() != '/' && argument.front() != '-';
        add(isRelative && !place.empty() ? standardisedPath(place + '/' + argument, {}) : argument);
    }
    if (arguments.front().empty())
        return;
    for (const auto &variable : pieces(content(folder + "/environ"), '\0'))
        if (variable.starts_with("APPIMAGE="))
            add(variable.substr(std::string_view("APPIMAGE=").size()));
    for (const auto &line : pieces(content(folder + "/cgroup"), '\n')) {
        const auto id = RunningPrograms::idOfGroup(std::string_view(line).substr(line.rfind('/') + 1));
        if (!id.isEmpty())
            found.ids.insert(id);
    }
}

} // namespace

QString RunningPrograms::idOfGroup(std::string_view group)
{
    const auto name = QString::fromUtf8(group.data(), qsizetype(group.size()));
    const bool isScope = name.endsWith(u".scope"_s);
    if (!isScope && !name.endsWith(u".service"_s))
        return {};
    const auto stem = name.left(name.lastIndexOf(u'.'));
    if (name.startsWith(u"snap."_s))
        return stem.section(u'.', 1, 1);
    auto words = stem.section(u'@', 0, 0).split(u'-');
    if (words.takeFirst() != u"app" || words.isEmpty())
        return {};
    // Behind the last dash of a scope stands a number that tells it from others of the same application.
    if (isScope && words.size() > 1)
        words.removeLast();
    return unescaped(words.constLast());
}

std::optional<RunningPrograms> RunningPrograms::read(const std::string &processes)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(processes.c_str()), ::closedir);
    if (!folder)
        return std::nullopt;
    RunningPrograms found;
    const auto self = std::to_string(::getpid());
    while (const auto *entry = ::readdir(folder.get())) {
        const std::string name = entry->d_name;
        if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos || name == self)
            continue;
        const auto process = processes + '/' + name;
        if (isOwn(process))
            addProcess(process, found);
    }
    return found;
}

QSet<QString> RunningPrograms::busNames()
{
    const auto name = QUuid::createUuid().toString();
    QSet<QString> names;
    {
        auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        const auto call = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"ListNames"_s);
        if (bus.isConnected()) {
            const auto reply = bus.call(call, QDBus::Block, busMilliseconds);
            for (const auto &found : reply.arguments().value(0).toStringList())
                if (!found.startsWith(u':'))
                    names.insert(found);
        }
    }
    QDBusConnection::disconnectFromBus(name);
    return names;
}

} // namespace Quillbrook
