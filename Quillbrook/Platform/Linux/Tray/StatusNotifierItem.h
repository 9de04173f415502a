#pragma once

// The item as the panels of today's desktops read it: an object on the session bus with its texts, its
// pictures and what a press does. It tells of a change only where something has changed. Main thread only.

#include "Platform/Linux/Tray/StatusNotifierTypes.h"
#include "Platform/Linux/Tray/TrayPicture.h"
#include "Platform/TrayItem.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

namespace Quillbrook {

class StatusNotifierItem : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")

    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    /// Empty: a panel takes a named icon before a picture, and no icon theme knows how full the disk is.
    Q_PROPERTY(QString IconName READ noName CONSTANT)
    Q_PROPERTY(QList<Quillbrook::TrayPixmap> IconPixmap READ pixmaps)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QList<Quillbrook::TrayPixmap> OverlayIconPixmap READ noPixmaps CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<Quillbrook::TrayPixmap> AttentionIconPixmap READ noPixmaps CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT)
    Q_PROPERTY(QString IconThemePath READ noName CONSTANT)
    Q_PROPERTY(Quillbrook::TrayToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
    /// The text beside the icon, where a panel knows of such.
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide CONSTANT)
    Q_PROPERTY(uint XAyatanaOrderingIndex READ orderingIndex CONSTANT)

public:
    [[nodiscard]] static QString objectPath() { return QStringLiteral("/StatusNotifierItem"); }

    /// `menu` is where the item's menu is found on the same connection.
    StatusNotifierItem(const QDBusConnection &bus, const QDBusObjectPath &menu, QObject *parent = nullptr);
    ~StatusNotifierItem() override;

    /// Puts it on the bus.
    void publish();
    void setAppearance(const TrayItem::Appearance &appearance);
    /// The token that came with the last press; empty when there is none. Taken once.
    [[nodiscard]] QByteArray takeActivationToken();

    [[nodiscard]] QString category() const { return QStringLiteral("SystemServices"); }
    [[nodiscard]] QString id() const { return QStringLiteral("com.tarnwick.Quillbrook"); }
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString status() const { return QStringLiteral("Active"); }
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString noName() const { return {}; }
    [[nodiscard]] QList<TrayPixmap> noPixmaps() const { return {}; }
    [[nodiscard]] const QList<TrayPixmap> &pixmaps() const { return m_pixmaps; }
    [[nodiscard]] TrayToolTip toolTip() const;
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] const QDBusObjectPath &menu() const { return m_menu; }
    [[nodiscard]] const QString &label() const { return m_label; }
    /// The widest label there may be, so that the panel leaves the room.
    [[nodiscard]] QString labelGuide() const { return QStringLiteral("888.8 GB"); }
    [[nodiscard]] uint orderingIndex() const { return 0; }

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y);
    /// From panels that leave the menu to the item. What it would hold stands in the panel too.
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString &orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString &token);

Q_SIGNALS:
    /// Where on the screen, in the window system's own pixels.
    void pressed(const QPoint &place);
    /// By the middle button.
    void secondaryPressed();

    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString &status);
    Q_SCRIPTABLE void XAyatanaNewLabel(const QString &label, const QString &guide);

private:
    void tellText();
    void paint();

    QDBusConnection m_bus;
    QDBusObjectPath m_menu;
    QString m_label;
    TrayPicture::Content m_content;
    QList<TrayPixmap> m_pixmaps;
    QByteArray m_token;
    bool m_isPublished = false;
};

} // namespace Quillbrook
