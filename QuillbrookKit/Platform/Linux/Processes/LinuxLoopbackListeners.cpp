#include "Platform/Linux/Processes/LinuxLoopbackListeners.h"

#include "Platform/Linux/Files/LinuxFileReading.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <array>
#include <unistd.h>
#include <utility>

namespace Quillbrook {

namespace {

/// Accounts below this belong to the system: login.defs gives people numbers from here on.
constexpr unsigned firstPerson = 1000;
// A line is 150 bytes: hundreds of thousands of connections.
constexpr qsizetype longestTable = qsizetype{ 64 } * 1024 * 1024;

constexpr auto listening = "0A";
// The addresses that take a connection to 127.0.0.1, as the tables write them: four bytes at a time, each
// four from the last to the first.
constexpr std::array reachable{ "0100007F", "00000000", "00000000000000000000000000000000",
    "0000000000000000FFFF00000100007F", "0000000000000000FFFF000000000000" };

/// The owner of a line of the table; absent where the line is of no listener on that port.
std::optional<unsigned> ownerIn(const QByteArray &line, quint16 port)
{
    const auto fields = line.simplified().split(' ');
    const auto own = fields.value(1).split(':');
    bool isPort = false;
    bool isOwner = false;
    const auto owner = fields.value(7).toUInt(&isOwner);
    if (fields.value(3) != listening || own.value(1).toUShort(&isPort, 16) != port || !isPort || !isOwner
        || std::ranges::none_of(reachable, [&own](const char *address) { return own.first() == address; }))
        return std::nullopt;
    return owner;
}

} // namespace

LinuxLoopbackListeners::LinuxLoopbackListeners()
    : LinuxLoopbackListeners(Sources{})
{
}

LinuxLoopbackListeners::LinuxLoopbackListeners(Sources sources)
    : m_sources(std::move(sources))
{
}

unsigned LinuxLoopbackListeners::ownUserId()
{
    return ::getuid();
}

Listener LinuxLoopbackListeners::at(quint16 port) const
{
    auto found = Listener::none;
    for (const auto &table : { m_sources.tcp, m_sources.tcp6 }) {
        const auto text = LinuxFileReading().contents(table, longestTable).value_or(QByteArray());
        for (const auto &line : text.split('\n')) {
            const auto owner = ownerIn(line, port);
            if (owner && *owner != m_sources.userId && *owner >= firstPerson)
                return Listener::foreign;
            if (owner)
                found = Listener::trusted;
        }
    }
    return found;
}

} // namespace Quillbrook
