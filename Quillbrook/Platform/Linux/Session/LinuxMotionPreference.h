#pragma once

// The desktops' settings about movement, as the desktop portal tells them: the shared one, and those that
// single desktops had before it. Asked for once without waiting, then followed.

#include "Platform/MotionPreference.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QHash>
#include <QString>

namespace Quillbrook {

class LinuxMotionPreference final : public MotionPreference
{
    Q_OBJECT

public:
    explicit LinuxMotionPreference(const QDBusConnection &sessionBus = QDBusConnection::sessionBus());

    [[nodiscard]] bool isReduced() const override;

    /// What one setting says; absent when it is not about movement or can't be understood.
    [[nodiscard]] static std::optional<bool> asksForLess(
        const QString &group, const QString &key, const QVariant &value);

private Q_SLOTS:
    void follow(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void ask();
    void take(const QString &group, const QString &key, const QVariant &value);

    QDBusConnection m_bus;
    /// By group, as each desktop has one such setting.
    QHash<QString, bool> m_answers;
};

} // namespace Quillbrook
