#pragma once

// The program's item in the desktop's tray. Main thread only.

#include <QByteArray>
#include <QObject>
#include <QPoint>
#include <QString>

#include <optional>

namespace Quillbrook {

class TrayItem : public QObject
{
    Q_OBJECT

public:
    struct Appearance
    {
        /// The short figure: beside the icon where the desktop shows a label there.
        QString title{};
        /// How full the disk is, 0 to 1, which the icon shows.
        double usedShare = 0;
        /// The icon warns.
        bool isDanger = false;

        bool operator==(const Appearance &) const = default;
    };

    using QObject::QObject;

    /// Puts it into the tray, or changes it. A tray that comes up later gets it then.
    virtual void show(const Appearance &appearance) = 0;
    /// Whether there is a tray that shows it now.
    [[nodiscard]] virtual bool isShown() const = 0;
    /// What lets a window come to the front after the last press, where the desktop asks for such; taken
    /// once.
    [[nodiscard]] virtual QByteArray takeActivationToken() { return {}; }

Q_SIGNALS:
    /// It was pressed: where on the screen, where the desktop tells.
    void activated(const std::optional<QPoint> &place);
    /// Entries of its menu, for desktops that show a menu instead.
    void openChosen();
    void checkChosen();
    void quitChosen();
    void shownChanged();
};

} // namespace Quillbrook
