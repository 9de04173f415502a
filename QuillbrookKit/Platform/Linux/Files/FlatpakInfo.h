#pragma once

// The description that Flatpak keeps of an application: "metadata" in its deployment; of an instance of it,
// "info" among its notes, and /.flatpak-info inside the instance.

#include <QByteArrayView>
#include <QString>

namespace Quillbrook {

/// What it tells: the application's id, the runtime it runs on as "ID/ARCH/BRANCH", and whether it sees the
/// home folder.
struct FlatpakInfo
{
    QString application{};
    QString runtime{};
    bool seesHome = false;

    bool operator==(const FlatpakInfo &) const = default;
};

[[nodiscard]] FlatpakInfo parseFlatpakInfo(QByteArrayView text);

} // namespace Quillbrook
