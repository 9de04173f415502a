#include "Platform/Linux/Tray/XEmbedTrayItem.h"

#include "Platform/Linux/Tray/TrayPicture.h"
#include "Platform/Linux/Tray/TrayTexts.h"

#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <QScreen>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

QIcon icon(const TrayPicture::Content &content)
{
    QIcon result;
    for (const auto &image : TrayPicture::drawAll(content))
        result.addPixmap(QPixmap::fromImage(image));
    return result;
}

/// The end of the item that faces the middle of its screen: the panel then stands beside it and not over it.
std::optional<QPoint> innerEnd(const QRect &item)
{
    if (item.isEmpty())
        return std::nullopt;
    const auto middle = item.center();
    const auto *screen = QGuiApplication::screenAt(middle);
    const auto isInUpperHalf = screen && middle.y() < screen->geometry().center().y();
    return QPoint(middle.x(), isInUpperHalf ? item.bottom() : item.top());
}

} // namespace

XEmbedTrayItem::XEmbedTrayItem()
    : m_open(TrayTexts::open())
    , m_check(TrayTexts::checkNow())
    , m_quit(TrayTexts::quit())
{
    m_figure.setEnabled(false);
    m_menu.addAction(&m_figure);
    m_menu.addSeparator();
    m_menu.addActions({ &m_open, &m_check, &m_quit });
    m_icon.setContextMenu(&m_menu);
    connect(&m_open, &QAction::triggered, this, &TrayItem::openChosen);
    connect(&m_check, &QAction::triggered, this, &TrayItem::checkChosen);
    connect(&m_quit, &QAction::triggered, this, &TrayItem::quitChosen);
    connect(&m_icon, &QSystemTrayIcon::activated, this, &XEmbedTrayItem::press);
}

std::unique_ptr<TrayItem> XEmbedTrayItem::make()
{
    const auto isPossible = qobject_cast<QApplication *>(QCoreApplication::instance())
        && QGuiApplication::platformName() == u"xcb"_s;
    return isPossible ? std::make_unique<XEmbedTrayItem>() : nullptr;
}

void XEmbedTrayItem::show(const Appearance &appearance)
{
    // An ampersand would mark the next letter as the entry's key.
    m_figure.setText(TrayTexts::free(appearance.title).replace(u'&', u"&&"_s));
    m_icon.setToolTip(TrayTexts::whole(appearance.title));
    m_icon.setIcon(icon(TrayPicture::contentOf(appearance.usedShare, appearance.isDanger)));
    m_icon.show();
    seekTray();
}

void XEmbedTrayItem::press(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Trigger)
        Q_EMIT activated(innerEnd(m_icon.geometry()));
    else if (reason == QSystemTrayIcon::MiddleClick)
        Q_EMIT openChosen();
}

void XEmbedTrayItem::seekTray()
{
    const auto isShown = m_icon.isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
    if (std::exchange(m_isShown, isShown) != m_isShown)
        Q_EMIT shownChanged();
}

} // namespace Quillbrook
