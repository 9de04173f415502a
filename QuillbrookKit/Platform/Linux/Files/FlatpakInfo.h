#pragma once

// The description that Flatpak keeps of an instance of an application: "info" among its notes, and
// /.flatpak-info inside the instance.

#include <QByteArrayView>
#include <QString>

namespace Quillbrook {

/// What it tells: the application's id, and whether it sees the home folder.
struct FlatpakInfo
{
    QString application{};
    bool seesHome = false;

    bool operator==(const FlatpakInfo &) const = default;
};

[[nodiscard]] FlatpakInfo parseFlatpakInfo(QByteArrayView text);

} // namespace Quillbrook
