#pragma once

// The files of applications' icons: absolute paths, and names in the icon themes. Only asks which files there
// are; reads none. One thread.

#include <QString>

#include <map>
#include <string>
#include <vector>

namespace Quillbrook {

struct ApplicationPlaces;

class IconFiles
{
public:
    /// Goes over the folders that programs put their icons into.
    explicit IconFiles(const ApplicationPlaces &places);

    /// The picture for a name, or for an absolute path, that suits a list best; empty where there is none.
    [[nodiscard]] std::string file(const QString &icon) const;

private:
    struct Found
    {
        std::string path{};
        int merit = 0;
    };

    void add(const std::string &folder, int merit);

    std::vector<std::string> m_themes;
    std::map<std::string, Found> m_found;
};

} // namespace Quillbrook
