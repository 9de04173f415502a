#pragma once

// Tells the desktop's watcher of a tray item, at once and whenever a watcher comes up: at login it may come
// later than the program, and a panel that starts anew brings another. Main thread only.

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <chrono>

namespace Quillbrook {

class StatusNotifierRegistration : public QObject
{
    Q_OBJECT

public:
    /// How long the watcher has to answer. Nobody waits for it, and at login it has much to do.
    static constexpr std::chrono::milliseconds patience{ 25000 };

    explicit StatusNotifierRegistration(const QDBusConnection &bus, QObject *parent = nullptr);
    ~StatusNotifierRegistration() override;

    /// To be called once the item is on the bus. Without a bus nothing happens.
    void start();
    /// The watcher knows the item, and a panel is there that shows what the watcher knows.
    [[nodiscard]] bool isShown() const { return m_isShown; }

Q_SIGNALS:
    void shownChanged();

private Q_SLOTS:
    void askForPanel();

private:
    void takeName();
    void enlist();
    void startOver();
    void setShown(bool isShown);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watch;
    /// By which the watcher finds the item; empty before `start`.
    QString m_name;
    bool m_ownsName = false;
    /// Of the watcher that is there now, so that an answer of an earlier one counts no more.
    int m_generation = 0;
    bool m_isKnown = false;
    bool m_isShown = false;
};

} // namespace Quillbrook
