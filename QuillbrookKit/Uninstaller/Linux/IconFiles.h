#pragma once

// The files of applications' icons: absolute paths, and names in the icon themes. Asks which files there are,
// and reads none but the indexes of themes. One thread.

#include <QString>

#include <map>
#include <string>
#include <vector>

namespace Quillbrook {

class FileReading;
struct ApplicationPlaces;

class IconFiles
{
public:
    /// Goes over the folders that programs put their icons into.
    IconFiles(const FileReading &reading, const ApplicationPlaces &places);

    /// The picture for a name, or for an absolute path, that suits a list best; empty where there is none.
    /// Of a name, the desktop's own theme is asked first.
    [[nodiscard]] std::string file(const QString &icon) const;

private:
    struct Found
    {
        std::string path{};
        int merit = 0;
    };

    void add(const std::string &folder, int merit);

    /// The folders of the desktop's own theme and of those behind it, and of those that come last.
    std::vector<std::string> m_own;
    std::vector<std::string> m_last;
    /// What programs have put where all do, by name.
    std::map<std::string, Found> m_found;
};

} // namespace Quillbrook
