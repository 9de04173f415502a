#include "Platform/Linux/Tray/StatusNotifierItem.h"

#include "Platform/Linux/Tray/TrayTexts.h"

#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

StatusNotifierItem::StatusNotifierItem(
    const QDBusConnection &bus, const QDBusObjectPath &menu, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_menu(menu)
{
    registerStatusNotifierTypes();
    paint();
}

StatusNotifierItem::~StatusNotifierItem()
{
    if (m_isPublished)
        m_bus.unregisterObject(objectPath());
}

void StatusNotifierItem::publish()
{
    if (!m_isPublished && m_bus.isConnected())
        m_isPublished = m_bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableContents);
}

void StatusNotifierItem::setAppearance(const TrayItem::Appearance &appearance)
{
    if (std::exchange(m_label, appearance.title) != m_label)
        tellText();
    const auto content = TrayPicture::contentOf(appearance.usedShare, appearance.isDanger);
    if (std::exchange(m_content, content) != m_content) {
        paint();
        Q_EMIT NewIcon();
    }
}

QByteArray StatusNotifierItem::takeActivationToken()
{
    return std::exchange(m_token, {});
}

QString StatusNotifierItem::title() const
{
    return TrayTexts::whole(m_label);
}

TrayToolTip StatusNotifierItem::toolTip() const
{
    return { .iconName = id(), .title = TrayTexts::program(), .text = TrayTexts::free(m_label) };
}

void StatusNotifierItem::Activate(int x, int y)
{
    Q_EMIT pressed({ x, y });
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    Q_EMIT pressed({ x, y });
}

void StatusNotifierItem::SecondaryActivate(int x, int y)
{
    Q_UNUSED(x)
    Q_UNUSED(y)
    Q_EMIT secondaryPressed();
}

void StatusNotifierItem::Scroll(int delta, const QString &orientation)
{
    // There is nothing to scroll; a panel that gets an error for it would tell of one.
    Q_UNUSED(delta)
    Q_UNUSED(orientation)
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString &token)
{
    m_token = token.toUtf8();
}

void StatusNotifierItem::tellText()
{
    Q_EMIT NewTitle();
    Q_EMIT NewToolTip();
    Q_EMIT XAyatanaNewLabel(m_label, labelGuide());
    if (!m_isPublished)
        return;
    // The panels that know labels read them by the one signal or by the other.
    auto changed = QDBusMessage::createSignal(
        objectPath(), u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    changed << u"org.kde.StatusNotifierItem"_s << QVariantMap{ { u"XAyatanaLabel"_s, m_label } }
            << QStringList();
    m_bus.send(changed);
}

void StatusNotifierItem::paint()
{
    m_pixmaps.clear();
    for (const auto &image : TrayPicture::drawAll(m_content))
        m_pixmaps.append(trayPixmap(image));
}

} // namespace Quillbrook
