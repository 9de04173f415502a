#pragma once

// The durable small settings of the program, by key. Reading never fails: what is missing, damaged or of
// another type is absent. Writing never fails visibly: a store that can't be written keeps its old state on
// disk. Main thread only.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace Quillbrook {

class UserDefaults
{
public:
    virtual ~UserDefaults() = default;
    [[nodiscard]] virtual std::optional<qint64> integer(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<double> real(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QStringList> texts(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QByteArray> data(const QString &key) const = 0;
    /// A moment, in UTC, exact to the millisecond.
    [[nodiscard]] virtual std::optional<QDateTime> date(const QString &key) const = 0;
    virtual void setInteger(const QString &key, qint64 value) = 0;
    virtual void setBoolean(const QString &key, bool value) = 0;
    virtual void setReal(const QString &key, double value) = 0;
    virtual void setTexts(const QString &key, const QStringList &value) = 0;
    virtual void setData(const QString &key, const QByteArray &value) = 0;
    virtual void setDate(const QString &key, const QDateTime &value) = 0;
    virtual void remove(const QString &key) = 0;
    /// What is set is stored soon. Afterwards all of it is, as far as it can be written.
    virtual void store() = 0;
};

} // namespace Quillbrook
