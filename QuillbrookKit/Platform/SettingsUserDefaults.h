#pragma once

// The user defaults in a settings file of Qt's. What is set is written soon, from the event loop, or at once
// by `store`. Main thread only.

#include "Platform/UserDefaults.h"

#include <QSettings>

namespace Quillbrook {

class SpaceReserve;

class SettingsUserDefaults final : public UserDefaults
{
public:
    /// Keeps them in the file at `path`. `reserve` is given up for a second try where that could not be
    /// written, and kept again afterwards; it outlives this object. None: a full disk keeps the old file.
    explicit SettingsUserDefaults(const QString &path, SpaceReserve *reserve = nullptr);
    ~SettingsUserDefaults() override;
    SettingsUserDefaults(const SettingsUserDefaults &) = delete;
    SettingsUserDefaults &operator=(const SettingsUserDefaults &) = delete;

    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override;
    [[nodiscard]] std::optional<double> real(const QString &key) const override;
    [[nodiscard]] std::optional<QStringList> texts(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;
    [[nodiscard]] std::optional<QDateTime> date(const QString &key) const override;
    void setInteger(const QString &key, qint64 value) override;
    void setBoolean(const QString &key, bool value) override;
    void setReal(const QString &key, double value) override;
    void setTexts(const QString &key, const QStringList &value) override;
    void setData(const QString &key, const QByteArray &value) override;
    void setDate(const QString &key, const QDateTime &value) override;
    void remove(const QString &key) override;
    void store() override;

private:
    [[nodiscard]] std::optional<QString> text(const QString &key) const;
    void set(const QString &key, const QVariant &value);
    void writeSoon();
    [[nodiscard]] bool isWritten() const;

    QSettings m_settings;
    SpaceReserve *m_reserve;
    bool m_hasUnwritten = false;
};

} // namespace Quillbrook
