#pragma once

// The question before the program ends while things are being removed, or something is moved to another
// drive, or back. Main thread only; the model outlives it.

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
    /// It is about something that is moved to another drive, and not about a removal.
    Q_PROPERTY(bool isAboutDrives READ isAboutDrives NOTIFY changed FINAL)

public:
    explicit QuitState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool asked() const { return m_asked; }
    [[nodiscard]] bool isAboutDrives() const;

    /// Asks, where something is moved or removed; answers whether it did. It stands until it is answered, or
    /// there is nothing to ask about any more.
    [[nodiscard]] bool ask();
    /// The program goes on.
    Q_INVOKABLE void stay();
    /// The program ends.
    Q_INVOKABLE void quit();

Q_SIGNALS:
    void changed();
    void quitChosen();

private:
    void follow();
    void setAsked(bool asked);

    AppModel &m_model;
    bool m_asked = false;
};

} // namespace Quillbrook
