#pragma once

// A desktop entry as GLib's key files read it. Its content is not trusted: one that can't be understood is
// none, and names are one line that can be seen.

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

namespace Quillbrook {

struct DesktopEntry
{
    /// In the person's language. Never empty.
    QString name{};
    /// What `Exec` starts, without the codes that stand for files; empty where it can't be understood.
    QStringList command{};
    QString tryExec{};
    /// A name or a path.
    QString icon{};
    bool isApplication = false;
    bool isHidden = false;
    bool isDisplayed = true;
    /// The desktops that alone show it, and those that don't.
    QStringList onlyShownIn{};
    QStringList notShownIn{};
    /// The Flatpak application, and the snap, that it belongs to.
    QString flatpak{};
    QString snap{};
    QString appImageVersion{};

    bool operator==(const DesktopEntry &) const = default;

    /// What is longer is nobody's entry.
    static constexpr qsizetype maximumBytes = qsizetype{ 256 } * 1024;

    [[nodiscard]] static std::optional<DesktopEntry> parse(QByteArrayView text);

    /// Whether a session of these desktops shows it. The first that it names decides.
    [[nodiscard]] bool isShownIn(const QStringList &desktops) const;
};

/// One line of it without characters that are not seen, some of which turn the writing around.
[[nodiscard]] QString plainLine(const QString &text);

} // namespace Quillbrook
