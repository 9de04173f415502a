#pragma once

// The item in the tray of an older X11 desktop, whose icons are small windows. Only for desktops that don't
// have the present kind of tray: the first question to Qt's class decides for good which kind it takes, so
// that it must not be made before that is known. Main thread only.

#include "Platform/TrayItem.h"

#include <QAction>
#include <QMenu>
#include <QSystemTrayIcon>

#include <memory>

namespace Quillbrook {

class XEmbedTrayItem final : public TrayItem
{
    Q_OBJECT

public:
    XEmbedTrayItem();

    /// Nothing where there can be no such tray, as on Wayland.
    [[nodiscard]] static std::unique_ptr<TrayItem> make();

    void show(const Appearance &appearance) override;
    [[nodiscard]] bool isShown() const override { return m_isShown; }

private:
    void press(QSystemTrayIcon::ActivationReason reason);
    /// Nobody tells when such a tray comes or goes: it is looked for whenever the figure changes.
    void seekTray();

    QMenu m_menu;
    QAction m_figure;
    QAction m_open;
    QAction m_check;
    QAction m_quit;
    QSystemTrayIcon m_icon;
    bool m_isShown = false;
};

} // namespace Quillbrook
