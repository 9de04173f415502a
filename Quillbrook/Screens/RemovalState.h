#pragma once

// How far the removal is that runs, in words and as a share. Main thread only; the queue outlives it.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class RemovalQueue;

class RemovalState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A screen is handed its state")

    /// Whether something is being removed, or waits for it: nothing else can be started meanwhile.
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged FINAL)
    /// Whether there is anything to tell of it; without that the texts are empty.
    Q_PROPERTY(bool shown READ shown NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString detail READ detail NOTIFY changed FINAL)
    /// 0 to 1.
    Q_PROPERTY(double share READ share NOTIFY changed FINAL)
    /// It has not been told to stop yet.
    Q_PROPERTY(bool canStop READ canStop NOTIFY changed FINAL)

public:
    explicit RemovalState(RemovalQueue &queue, QObject *parent = nullptr);

    [[nodiscard]] bool busy() const;
    [[nodiscard]] bool shown() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString detail() const;
    [[nodiscard]] double share() const;
    [[nodiscard]] bool canStop() const;

    /// Ends it after the entry that goes now.
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void busyChanged();
    void changed();

private:
    RemovalQueue &m_queue;
};

} // namespace Quillbrook
