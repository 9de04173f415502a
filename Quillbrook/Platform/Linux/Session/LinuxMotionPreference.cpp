#include "Platform/Linux/Session/LinuxMotionPreference.h"

#include "Platform/Linux/Bus/BusCall.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QStringList>

#include <algorithm>
#include <array>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto service = u"org.freedesktop.portal.Desktop"_s;
const auto path = u"/org/freedesktop/portal/desktop"_s;
const auto interface = u"org.freedesktop.portal.Settings"_s;
constexpr std::chrono::milliseconds patience{ 5000 };

using Groups = QMap<QString, QVariantMap>;

std::optional<bool> isOne(const QVariant &value)
{
    bool isNumber = false;
    const auto number = value.toUInt(&isNumber);
    return isNumber ? std::optional(number == 1) : std::nullopt;
}

std::optional<bool> isOff(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<bool>() ? std::optional(!value.toBool()) : std::nullopt;
}

std::optional<bool> isZero(const QVariant &value)
{
    bool isNumber = false;
    const auto factor = value.toDouble(&isNumber);
    return isNumber ? std::optional(factor <= 0) : std::nullopt;
}

struct Setting
{
    const char16_t *group;
    const char16_t *key;
    std::optional<bool> (*asksForLess)(const QVariant &value);
};

constexpr std::array settings{
    Setting{ u"org.freedesktop.appearance", u"reduced-motion", isOne },
    Setting{ u"org.gnome.desktop.interface", u"enable-animations", isOff },
    Setting{ u"org.kde.kdeglobals.KDE", u"AnimationDurationFactor", isZero },
};

QStringList groups()
{
    QStringList result;
    for (const auto &setting : settings)
        result.append(QString::fromUtf16(setting.group));
    return result;
}

} // namespace

LinuxMotionPreference::LinuxMotionPreference(const QDBusConnection &sessionBus)
    : m_bus(sessionBus)
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(
        service, path, interface, u"SettingChanged"_s, this, SLOT(follow(QString, QString, QDBusVariant)));
    ask();
}

bool LinuxMotionPreference::isReduced() const
{
    return std::ranges::find(m_answers, true) != m_answers.cend();
}

std::optional<bool> LinuxMotionPreference::asksForLess(
    const QString &group, const QString &key, const QVariant &value)
{
    for (const auto &setting : settings)
        if (group == QStringView(setting.group) && key == QStringView(setting.key))
            return setting.asksForLess(value);
    return std::nullopt;
}

void LinuxMotionPreference::follow(const QString &group, const QString &key, const QDBusVariant &value)
{
    const auto before = isReduced();
    take(group, key, value.variant());
    if (before != isReduced())
        Q_EMIT changed();
}

void LinuxMotionPreference::ask()
{
    auto question = QDBusMessage::createMethodCall(service, path, interface, u"ReadAll"_s);
    question << groups();
    BusCall::ask(m_bus, question, patience, this, [this](const QDBusMessage &reply) {
        const auto arguments = reply.arguments();
        if (reply.type() != QDBusMessage::ReplyMessage || arguments.size() != 1)
            return;
        const auto before = isReduced();
        const auto answer = qdbus_cast<Groups>(arguments.first());
        for (auto group = answer.cbegin(); group != answer.cend(); ++group)
            for (auto key = group->cbegin(); key != group->cend(); ++key)
                take(group.key(), key.key(), key.value());
        if (before != isReduced())
            Q_EMIT changed();
    });
}

void LinuxMotionPreference::take(const QString &group, const QString &key, const QVariant &value)
{
    if (const auto answer = asksForLess(group, key, value))
        m_answers.insert(group, *answer);
}

} // namespace Quillbrook
