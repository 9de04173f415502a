#pragma once

// Writes property lists byte by byte, among them such as no honest program writes.

#include <QByteArray>
#include <QList>

namespace Quillbrook::PropertyListBytes {

/// A number of `length` bytes, the highest first.
inline QByteArray bigEndian(quint64 value, int length)
{
    QByteArray bytes;
    for (int shift = (length - 1) * 8; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(shift < 64 ? value >> shift : 0));
    return bytes;
}

inline QByteArray marker(int kind, quint64 count)
{
    if (count < 15)
        return QByteArray(1, static_cast<char>(kind << 4 | static_cast<int>(count)));
    return QByteArray(1, static_cast<char>(kind << 4 | 0xf)) + '\x13' + bigEndian(count, 8);
}

inline QByteArray text(const QByteArray &ascii)
{
    return marker(0x5, static_cast<quint64>(ascii.size())) + ascii;
}

/// Objects are named by their place in the list given to `binary`.
inline QByteArray container(int kind, const QList<quint32> &members, quint64 count)
{
    auto bytes = marker(kind, count);
    for (const auto member : members)
        bytes += bigEndian(member, 4);
    return bytes;
}
inline QByteArray array(const QList<quint32> &members)
{
    return container(0xa, members, static_cast<quint64>(members.size()));
}
inline QByteArray dictionary(const QList<quint32> &keys, const QList<quint32> &values)
{
    return container(0xd, keys + values, static_cast<quint64>(keys.size()));
}

/// A binary property list of these objects, the first of which is the top.
inline QByteArray binary(const QList<QByteArray> &objects)
{
    QByteArray bytes = "bplist00";
    QByteArray offsets;
    for (const auto &object : objects) {
        offsets += bigEndian(static_cast<quint64>(bytes.size()), 4);
        bytes += object;
    }
    const auto table = static_cast<quint64>(bytes.size());
    return bytes + offsets + QByteArray(6, '\0') + '\x04' + '\x04'
        + bigEndian(static_cast<quint64>(objects.size()), 8) + bigEndian(0, 8) + bigEndian(table, 8);
}

inline QByteArray xml(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST "
           "1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">"
        + content + "</plist>\n";
}

} // namespace Quillbrook::PropertyListBytes
