#pragma once

// Which package of the system owns which file, asked once for all of them.

#include <QString>

#include <map>
#include <string>
#include <vector>

namespace Quillbrook {

class ProcessRunner;
struct ApplicationPlaces;

struct PackageOwners
{
    struct Package
    {
        QString name{};
        QString version{};
        qint64 bytes = 0;

        bool operator==(const Package &) const = default;
    };

    /// By path. At most two processes are started; where no package manager answers, nobody owns anything.
    [[nodiscard]] static std::map<std::string, Package> of(const ProcessRunner &processes,
        const ApplicationPlaces &places, const std::vector<std::string> &paths);
};

} // namespace Quillbrook
