#pragma once

// Tells the desktop's watcher of a tray item, at once and whenever a watcher comes up: at login it may come
// later than the program, and a panel that starts anew brings another. A busy watcher may also drop an item
// that is still there; it is told of it again. Main thread only.

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
    /// How often one watcher that drops the item is told of it again, and how long after the first time; each
    /// further pause is twice as long.
    static constexpr int mostReturns = 6;
    static constexpr std::chrono::milliseconds firstPause{ 250 };

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
    /// The watcher has dropped the item of that name.
    void comeBack(const QString &item);

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
    /// Of the watcher that is there now, and of the time it has known the item, so that an earlier answer
    /// counts no more.
    int m_generation = 0;
    int m_returns = 0;
    bool m_isKnown = false;
    bool m_isShown = false;
};

} // namespace Quillbrook
