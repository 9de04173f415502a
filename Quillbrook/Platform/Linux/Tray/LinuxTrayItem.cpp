#include "Platform/Linux/Tray/LinuxTrayItem.h"

#include "Platform/Linux/Tray/ScreenPoint.h"
#include "Platform/Linux/Tray/XEmbedTrayItem.h"

#include <utility>

namespace Quillbrook {

namespace {

/// A panel that can't tell the place gives the screen's corner.
std::optional<QPoint> placeOf(const QPoint &native)
{
    if (native.isNull())
        return std::nullopt;
    return ScreenPoint::fromNative(native, ScreenPoint::screens());
}

} // namespace

std::unique_ptr<TrayItem> LinuxTrayItem::makeOlder()
{
    return XEmbedTrayItem::make();
}

LinuxTrayItem::LinuxTrayItem()
    : LinuxTrayItem(Options{})
{
}

LinuxTrayItem::LinuxTrayItem(const Options &options)
    : m_options(options)
    , m_menu(options.bus)
    , m_item(options.bus, TrayMenu::objectPath())
    , m_registration(options.bus)
{
    connect(&m_item, &StatusNotifierItem::pressed, this,
        [this](const QPoint &native) { Q_EMIT activated(placeOf(native)); });
    connect(&m_item, &StatusNotifierItem::secondaryPressed, this, &TrayItem::openChosen);
    connect(&m_menu, &TrayMenu::openChosen, this, &TrayItem::openChosen);
    connect(&m_menu, &TrayMenu::checkChosen, this, &TrayItem::checkChosen);
    connect(&m_menu, &TrayMenu::quitChosen, this, &TrayItem::quitChosen);
    connect(&m_registration, &StatusNotifierRegistration::shownChanged, this, &LinuxTrayItem::followPanel);
    m_grace.setSingleShot(true);
    connect(&m_grace, &QTimer::timeout, this, &LinuxTrayItem::tryOther);
}

void LinuxTrayItem::show(const Appearance &appearance)
{
    const auto isFirst = !m_appearance;
    if (std::exchange(m_appearance, appearance) == m_appearance)
        return;
    m_menu.setFigure(appearance.title);
    m_item.setAppearance(appearance);
    if (m_other)
        m_other->show(appearance);
    if (!isFirst)
        return;
    m_menu.publish();
    m_item.publish();
    m_registration.start();
    // Without a bus there is nothing to wait for.
    m_grace.start(m_options.bus.isConnected() ? m_options.grace : std::chrono::milliseconds(0));
}

bool LinuxTrayItem::isShown() const
{
    return m_registration.isShown() || (m_other && m_other->isShown());
}

QByteArray LinuxTrayItem::takeActivationToken()
{
    return m_item.takeActivationToken();
}

void LinuxTrayItem::followPanel()
{
    if (m_registration.isShown()) {
        m_grace.stop();
        m_other.reset();
    } else {
        // A panel that starts anew is gone for a moment only.
        m_grace.start(m_options.grace);
    }
    tellShown();
}

void LinuxTrayItem::tryOther()
{
    if (m_registration.isShown() || m_other || !m_options.makeOther)
        return;
    m_other = m_options.makeOther();
    if (!m_other)
        return;
    connect(m_other.get(), &TrayItem::activated, this, &TrayItem::activated);
    connect(m_other.get(), &TrayItem::openChosen, this, &TrayItem::openChosen);
    connect(m_other.get(), &TrayItem::checkChosen, this, &TrayItem::checkChosen);
    connect(m_other.get(), &TrayItem::quitChosen, this, &TrayItem::quitChosen);
    connect(m_other.get(), &TrayItem::shownChanged, this, &LinuxTrayItem::tellShown);
    m_other->show(*m_appearance);
    tellShown();
}

void LinuxTrayItem::tellShown()
{
    const auto shown = isShown();
    if (std::exchange(m_wasShown, shown) != shown)
        Q_EMIT shownChanged();
}

} // namespace Quillbrook
