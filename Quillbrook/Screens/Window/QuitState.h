#pragma once

// The question that comes up when the program is told to quit while things are being removed. Main thread
// only.
// The question before the program ends while something is moved to another drive, or back. Main thread only;
// the model outlives it.

#include <QObject>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class QuitState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Whether the question stands.
    Q_PROPERTY(bool asked READ asked NOTIFY changed FINAL)

public:
    using QObject::QObject;

    [[nodiscard]] bool asked() const { return m_asked; }
    void ask() { set(true); }
    /// Ends the program once the entry is done that goes now.
    Q_INVOKABLE void quit()
    {
        set(false);
        Q_EMIT confirmed();
    }
    /// Also when there is nothing left to wait for.
    Q_INVOKABLE void keep() { set(false); }

Q_SIGNALS:
    void changed();
    void confirmed();

private:
    void set(bool asked)
    {
        if (m_asked == asked)
            return;
        m_asked = asked;
        Q_EMIT changed();
    }

    explicit QuitState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool asked() const { return m_asked; }

    /// Asks, where something is moved; answers whether it did. It stands until it is answered, or there is
    /// nothing to ask about any more.
    [[nodiscard]] bool ask();
    /// The program goes on.
    Q_INVOKABLE void stay();
    /// The program ends.
    Q_INVOKABLE void quit();

Q_SIGNALS:
    void changed();
    void quitChosen();

private:
    void setAsked(bool asked);

    AppModel &m_model;
    bool m_asked = false;
};

} // namespace Quillbrook
