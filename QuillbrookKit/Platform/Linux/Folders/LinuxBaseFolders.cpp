#include "Platform/Linux/Folders/LinuxBaseFolders.h"

#include "Platform/Linux/Folders/LinuxHomeFolder.h"
#include "StandardisedPath.h"

namespace Quillbrook {

using namespace Qt::StringLiterals;

LinuxBaseFolders LinuxBaseFolders::of(const QProcessEnvironment &environment)
{
    if (isStrictSnap(environment))
        return {};
    const auto isInFlatpak = !environment.value(u"FLATPAK_ID"_s).isEmpty();
    const auto folder = [&](const QString &name) -> std::optional<QString> {
        const auto value = environment.value(isInFlatpak ? u"HOST_"_s + name : name);
        if (!value.startsWith(u'/'))
            return std::nullopt;
        return standardisedPath(value, {});
    };
    return { .cache = folder(u"XDG_CACHE_HOME"_s),
        .config = folder(u"XDG_CONFIG_HOME"_s),
        .data = folder(u"XDG_DATA_HOME"_s),
        .state = folder(u"XDG_STATE_HOME"_s) };
}

} // namespace Quillbrook
