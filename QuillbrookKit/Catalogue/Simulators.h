#pragma once

// What the simulator devices tell of themselves. Private to the catalogue.

#include <QByteArray>
#include <QSet>
#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

class FileReading;
class ProcessRunner;

namespace Simulators {

/// The identifiers of the devices that run now, asked of the simulator tool, whose listing is read to its end
/// however long that takes. Empty when the tool can't be started.
[[nodiscard]] QSet<QString> bootedIds(const ProcessRunner &processes);
/// The identifiers in the tool's listing, taken from behind the first "(" of each line of a booted
/// device. A device whose own name holds a parenthesis gives a wrong piece, kept on purpose.
[[nodiscard]] QSet<QString> parseBootedIds(const QByteArray &listing);

/// The device's name and its system's version, from the property list in its folder; absent when that
/// tells no name.
[[nodiscard]] std::optional<QString> name(const FileReading &reading, const std::string &deviceDirectory);
/// The same from the content of that property list.
[[nodiscard]] std::optional<QString> parseName(const QByteArray &propertyList);

} // namespace Simulators

} // namespace Quillbrook
