#include "Platform/Linux/Folders/LinuxSettingsFile.h"

#include "Platform/HomeFolder.h"
#include "StandardisedPath.h"

#include <QFile>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

std::string settingsFolder(const HomeFolder &home)
{
    const auto *told = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe): nothing here sets any
    const auto own = home.rawHomeDirectory();
    // A relative path is to be passed over.
    const std::string folder = told != nullptr && *told == '/' ? told : own + "/.config";
    return standardisedPath(folder, own) + "/Quillbrook";
}

} // namespace

LinuxSettingsFile::LinuxSettingsFile(const HomeFolder &home)
{
    const auto folder = settingsFolder(home);
    auto text = QFile::decodeName(QByteArray::fromStdString(folder));
    if (QFile::encodeName(text).toStdString() != folder) {
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        m_folder = FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        text = u"/proc/self/fd/%1"_s.arg(m_folder.number());
    }
    m_path = text + u"/Quillbrook.conf"_s;
}

} // namespace Quillbrook
