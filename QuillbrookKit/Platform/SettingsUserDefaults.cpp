#include "Platform/SettingsUserDefaults.h"

#include <cmath>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto trueText = u"true"_s;
const auto falseText = u"false"_s;
/// Digits that bring every double back exactly.
constexpr int exactDigits = 17;

} // namespace

SettingsUserDefaults::SettingsUserDefaults()
    : m_settings(u"Quillbrook"_s, u"Quillbrook"_s)
{
    m_settings.setFallbacksEnabled(false);
}

SettingsUserDefaults::SettingsUserDefaults(const QString &path)
    : m_settings(path, QSettings::IniFormat)
{
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
    m_settings.setValue(key, QString::number(value));
}

void SettingsUserDefaults::setBoolean(const QString &key, bool value)
{
    m_settings.setValue(key, value ? trueText : falseText);
}

void SettingsUserDefaults::setReal(const QString &key, double value)
{
    m_settings.setValue(key, QString::number(value, 'g', exactDigits));
}

void SettingsUserDefaults::setTexts(const QString &key, const QStringList &value)
{
    m_settings.setValue(key, value);
}

void SettingsUserDefaults::setData(const QString &key, const QByteArray &value)
{
    m_settings.setValue(key, value);
}

void SettingsUserDefaults::setDate(const QString &key, const QDateTime &value)
{
    m_settings.setValue(key, value.toUTC().toString(Qt::ISODateWithMs));
}

void SettingsUserDefaults::remove(const QString &key)
{
    m_settings.remove(key);
}

} // namespace Quillbrook
