#include "Platform/Linux/Tray/TrayMenu.h"

#include "Platform/Linux/Tray/TrayTexts.h"

#include <array>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array entries{ TrayMenu::Entry::figure, TrayMenu::Entry::separator, TrayMenu::Entry::open,
    TrayMenu::Entry::checkNow, TrayMenu::Entry::quit };

const auto labelProperty = u"label"_s;

/// An underscore would mark the next letter as the entry's key.
QVariant label(QString text)
{
    return text.replace(u'_', u"__"_s);
}

bool exists(int id)
{
    return id >= int(TrayMenu::Entry::menu) && id <= int(entries.back());
}

} // namespace

TrayMenu::TrayMenu(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    registerTrayMenuTypes();
}

TrayMenu::~TrayMenu()
{
    if (m_isPublished)
        m_bus.unregisterObject(objectPath().path());
}

QDBusObjectPath TrayMenu::objectPath()
{
    return QDBusObjectPath(u"/StatusNotifierItem/Menu"_s);
}

void TrayMenu::publish()
{
    if (!m_isPublished && m_bus.isConnected())
        m_isPublished
            = m_bus.registerObject(objectPath().path(), this, QDBusConnection::ExportScriptableContents);
}

void TrayMenu::setFigure(const QString &figure)
{
    if (std::exchange(m_figure, figure) == m_figure)
        return;
    const auto id = int(Entry::figure);
    Q_EMIT ItemsPropertiesUpdated({ { .id = id, .properties = properties(id, { labelProperty }) } }, {});
}

uint TrayMenu::GetLayout(
    int parentId, int recursionDepth, const QStringList &propertyNames, MenuLayout &layout)
{
    if (!exists(parentId)) {
        refuse(parentId);
        return 0;
    }
    layout = { .id = parentId, .properties = properties(parentId, propertyNames) };
    if (parentId == int(Entry::menu) && recursionDepth != 0)
        for (const auto entry : entries)
            layout.children.append({ .id = int(entry), .properties = properties(int(entry), propertyNames) });
    return 1;
}

QList<MenuEntryProperties> TrayMenu::GetGroupProperties(
    const QList<int> &ids, const QStringList &propertyNames)
{
    QList<MenuEntryProperties> result;
    for (auto id = int(Entry::menu); exists(id); ++id)
        if (ids.isEmpty() || ids.contains(id))
            result.append({ .id = id, .properties = properties(id, propertyNames) });
    return result;
}

QDBusVariant TrayMenu::GetProperty(int id, const QString &name)
{
    const auto all = exists(id) ? properties(id) : QVariantMap();
    if (!all.contains(name)) {
        refuse(id);
        return QDBusVariant(QString());
    }
    return QDBusVariant(all.value(name));
}

void TrayMenu::Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp)
{
    Q_UNUSED(data)
    Q_UNUSED(timestamp)
    if (!exists(id))
        refuse(id);
    else if (eventId == u"clicked"_s)
        choose(id);
}

QList<int> TrayMenu::EventGroup(const QList<MenuEvent> &events)
{
    QList<int> missing;
    for (const auto &event : events) {
        if (!exists(event.id))
            missing.append(event.id);
        else if (event.name == u"clicked"_s)
            choose(event.id);
    }
    if (!missing.isEmpty() && missing.size() == events.size())
        refuse(missing.first());
    return missing;
}

bool TrayMenu::AboutToShow(int id)
{
    if (!exists(id))
        refuse(id);
    return false;
}

QList<int> TrayMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    for (const auto id : ids)
        if (!exists(id))
            idErrors.append(id);
    if (!idErrors.isEmpty() && idErrors.size() == ids.size())
        refuse(idErrors.first());
    return {};
}

QVariantMap TrayMenu::properties(int id, const QStringList &names) const
{
    QVariantMap all;
    switch (Entry(id)) {
    case Entry::menu:
        all = { { u"children-display"_s, u"submenu"_s } };
        break;
    case Entry::figure:
        all = { { labelProperty, label(TrayTexts::free(m_figure)) }, { u"enabled"_s, false } };
        break;
    case Entry::separator:
        all = { { u"type"_s, u"separator"_s } };
        break;
    case Entry::open:
        all = { { labelProperty, label(TrayTexts::open()) } };
        break;
    case Entry::checkNow:
        all = { { labelProperty, label(TrayTexts::checkNow()) } };
        break;
    case Entry::quit:
        all = { { labelProperty, label(TrayTexts::quit()) } };
        break;
    }
    if (!names.isEmpty())
        erase_if(all, [&](QVariantMap::iterator property) { return !names.contains(property.key()); });
    return all;
}

void TrayMenu::refuse(int id)
{
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, u"There is no such entry or property: %1"_s.arg(id));
}

void TrayMenu::choose(int id)
{
    // Later, so that the panel has its answer before a window comes up or a check of the disk begins.
    const auto tell = [this](void (TrayMenu::*chosen)()) {
        QMetaObject::invokeMethod(this, chosen, Qt::QueuedConnection);
    };
    switch (Entry(id)) {
    case Entry::open:
        tell(&TrayMenu::openChosen);
        break;
    case Entry::checkNow:
        tell(&TrayMenu::checkChosen);
        break;
    case Entry::quit:
        tell(&TrayMenu::quitChosen);
        break;
    case Entry::menu:
    case Entry::figure:
    case Entry::separator:
        break;
    }
}

} // namespace Quillbrook
