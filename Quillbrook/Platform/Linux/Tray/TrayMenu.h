#pragma once

// The item's menu as panels read it over the session bus and draw it themselves: the figure, and the ways
// back into the program. Main thread only.

#include "Platform/Linux/Tray/TrayMenuTypes.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QObject>

namespace Quillbrook {

class TrayMenu : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")

    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    /// The entries by their numbers in the menu; the menu itself is 0.
    enum class Entry { menu, figure, separator, open, checkNow, quit };

    explicit TrayMenu(const QDBusConnection &bus, QObject *parent = nullptr);
    ~TrayMenu() override;

    [[nodiscard]] static QDBusObjectPath objectPath();
    /// Puts it on the bus.
    void publish();
    void setFigure(const QString &figure);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString textDirection() const { return QStringLiteral("ltr"); }
    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    /// The entries below one, as deep as asked for (-1: all), with the named properties (none named: all).
    Q_SCRIPTABLE uint GetLayout(
        int parentId, int recursionDepth, const QStringList &propertyNames, Quillbrook::MenuLayout &layout);
    /// Of the entries that there are among those named; none named: of all.
    Q_SCRIPTABLE QList<Quillbrook::MenuEntryProperties> GetGroupProperties(
        const QList<int> &ids, const QStringList &propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString &name);
    Q_SCRIPTABLE void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    /// The answer names the entries that there are not; that there are none of them at all is an error.
    Q_SCRIPTABLE QList<int> EventGroup(const QList<Quillbrook::MenuEvent> &events);
    /// Never needs to be read anew: what changes is told when it does.
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void openChosen();
    void checkChosen();
    void quitChosen();

    Q_SCRIPTABLE void ItemsPropertiesUpdated(const QList<Quillbrook::MenuEntryProperties> &updatedProps,
        const QList<Quillbrook::MenuEntryLosses> &removedProps);
    /// Never sent by this menu, whose entries stay.
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint timestamp);

private:
    [[nodiscard]] QVariantMap properties(int id, const QStringList &names = {}) const;
    void refuse(int id);
    void choose(int id);

    QDBusConnection m_bus;
    QString m_figure;
    bool m_isPublished = false;
};

} // namespace Quillbrook
