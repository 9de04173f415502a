#pragma once

// User defaults in memory. A value of another type than asked for is absent, as in the real ones; what was
// stored at last is what a kill would leave.

#include "Platform/UserDefaults.h"

#include <QHash>
#include <QVariant>

namespace Quillbrook {

class FakeUserDefaults final : public UserDefaults
{
public:
    std::optional<qint64> integer(const QString &key) const override { return value<qint64>(key); }
    std::optional<bool> boolean(const QString &key) const override { return value<bool>(key); }
    std::optional<double> real(const QString &key) const override { return value<double>(key); }
    std::optional<QStringList> texts(const QString &key) const override { return value<QStringList>(key); }
    std::optional<QByteArray> data(const QString &key) const override { return value<QByteArray>(key); }
    std::optional<QDateTime> date(const QString &key) const override { return value<QDateTime>(key); }
    void setInteger(const QString &key, qint64 value) override { values.insert(key, value); }
    void setBoolean(const QString &key, bool value) override { values.insert(key, value); }
    void setReal(const QString &key, double value) override { values.insert(key, value); }
    void setTexts(const QString &key, const QStringList &value) override { values.insert(key, value); }
    void setData(const QString &key, const QByteArray &value) override { values.insert(key, value); }
    void setDate(const QString &key, const QDateTime &value) override { values.insert(key, value); }
    void remove(const QString &key) override { values.remove(key); }
    void store() override { stored = values; }

    QHash<QString, QVariant> values;
    QHash<QString, QVariant> stored;

private:
    template <typename Type>
    std::optional<Type> value(const QString &key) const
    {
        const auto found = values.constFind(key);
        if (found == values.constEnd() || found->metaType() != QMetaType::fromType<Type>())
            return std::nullopt;
        return found->value<Type>();
    }
};

} // namespace Quillbrook
