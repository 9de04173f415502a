#pragma once

// The item in whichever tray the desktop has: the one of today's panels over the session bus, also when it
// comes up later than the program, else that of older X11 desktops. Never in both.

#include "Platform/Linux/Tray/StatusNotifierItem.h"
#include "Platform/Linux/Tray/StatusNotifierRegistration.h"
#include "Platform/Linux/Tray/TrayMenu.h"
#include "Platform/TrayItem.h"

#include <QDBusConnection>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace Quillbrook {

class LinuxTrayItem final : public TrayItem
{
    Q_OBJECT

public:
    /// The item for an older tray; nothing where there can be no such tray.
    [[nodiscard]] static std::unique_ptr<TrayItem> makeOlder();

    struct Options
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        /// How long a panel of today may take to show the item before the older tray is tried.
        std::chrono::milliseconds grace{ 2000 };
        /// Makes the item for the older tray; may give nothing.
        std::function<std::unique_ptr<TrayItem>()> makeOther = makeOlder;
    };

    LinuxTrayItem();
    explicit LinuxTrayItem(const Options &options);

    void show(const Appearance &appearance) override;
    [[nodiscard]] bool isShown() const override;
    [[nodiscard]] QByteArray takeActivationToken() override;

private:
    void followPanel();
    void tryOther();
    void tellShown();

    Options m_options;
    TrayMenu m_menu;
    StatusNotifierItem m_item;
    StatusNotifierRegistration m_registration;
    QTimer m_grace;
    std::unique_ptr<TrayItem> m_other;
    /// Absent before the first `show`.
    std::optional<Appearance> m_appearance;
    bool m_wasShown = false;
};

} // namespace Quillbrook
