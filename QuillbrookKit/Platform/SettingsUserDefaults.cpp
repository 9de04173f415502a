#include "Platform/SettingsUserDefaults.h"

#include "Platform/SpaceReserve.h"

#include <cmath>
#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto trueText = u"true"_s;
const auto falseText = u"false"_s;
/// Digits that bring every double back exactly.
constexpr int exactDigits = 17;

} // namespace

SettingsUserDefaults::SettingsUserDefaults(const QString &path, SpaceReserve *reserve)
    : m_settings(path, QSettings::IniFormat)
    , m_reserve(reserve)
{
}

SettingsUserDefaults::~SettingsUserDefaults()
{
    store();
}

// The settings file knows texts only. Numbers are written as texts too, so that a value reads the same in
// the process that wrote it and in the next one.
std::optional<QString> SettingsUserDefaults::text(const QString &key) const
{
    const auto value = m_settings.value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

std::optional<qint64> SettingsUserDefaults::integer(const QString &key) const
{
    bool isNumber = false;
    const auto value = text(key).value_or(QString()).toLongLong(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<bool> SettingsUserDefaults::boolean(const QString &key) const
{
    const auto value = text(key);
    if (value == trueText)
        return true;
    if (value == falseText)
        return false;
    return std::nullopt;
}

std::optional<double> SettingsUserDefaults::real(const QString &key) const
{
    bool isNumber = false;
    const auto value = text(key).value_or(QString()).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<QStringList> SettingsUserDefaults::texts(const QString &key) const
{
    if (!m_settings.contains(key))
        return std::nullopt;
    // A list of one element comes back as a text, an empty list as an invalid value.
    const auto value = m_settings.value(key);
    const bool isList = !value.isValid() || value.typeId() == QMetaType::QString
        || value.typeId() == QMetaType::QStringList;
    return isList ? std::optional(value.toStringList()) : std::nullopt;
}

std::optional<QByteArray> SettingsUserDefaults::data(const QString &key) const
{
    const auto value = m_settings.value(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QDateTime> SettingsUserDefaults::date(const QString &key) const
{
    const auto moment = QDateTime::fromString(text(key).value_or(QString()), Qt::ISODateWithMs);
    return moment.isValid() && moment.timeSpec() == Qt::UTC ? std::optional(moment) : std::nullopt;
}

void SettingsUserDefaults::setInteger(const QString &key, qint64 value)
{
    set(key, QString::number(value));
}

void SettingsUserDefaults::setBoolean(const QString &key, bool value)
{
    set(key, value ? trueText : falseText);
}

void SettingsUserDefaults::setReal(const QString &key, double value)
{
    set(key, QString::number(value, 'g', exactDigits));
}

void SettingsUserDefaults::setTexts(const QString &key, const QStringList &value)
{
    set(key, value);
}

void SettingsUserDefaults::setData(const QString &key, const QByteArray &value)
{
    set(key, value);
}

void SettingsUserDefaults::setDate(const QString &key, const QDateTime &value)
{
    set(key, value.toUTC().toString(Qt::ISODateWithMs));
}

void SettingsUserDefaults::remove(const QString &key)
{
    m_settings.remove(key);
    writeSoon();
}

void SettingsUserDefaults::set(const QString &key, const QVariant &value)
{
    m_settings.setValue(key, value);
    writeSoon();
}

// Later, so that several changes in one go are one writing.
void SettingsUserDefaults::writeSoon()
{
    if (!std::exchange(m_hasUnwritten, true))
        QMetaObject::invokeMethod(
            &m_settings, [this] { store(); }, Qt::QueuedConnection);
}

void SettingsUserDefaults::store()
{
    if (!std::exchange(m_hasUnwritten, false) || isWritten() || m_reserve == nullptr || !m_reserve->release())
        return;
    std::ignore = isWritten();
    m_reserve->replenish();
}

// Whether the file holds everything, after an attempt to write what it doesn't. A store of its own asks,
// because one that failed once says so for ever; both write the same unwritten values.
bool SettingsUserDefaults::isWritten() const
{
    QSettings same(m_settings.fileName(), m_settings.format());
    same.sync();
    return same.status() != QSettings::AccessError;
}

} // namespace Quillbrook
