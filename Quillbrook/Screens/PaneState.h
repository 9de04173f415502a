#pragma once

// What every pane's state has in common. A pane learns here, and nowhere else, that it appears and
// disappears. Main thread only.

#include <QObject>
#include <QtQmlIntegration>

namespace Quillbrook {

class PaneState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

public:
    using QObject::QObject;

    /// Whether the pane is the chosen one of an open window. A scan or a notice that stands in front of it
    /// for a while changes nothing about that.
    [[nodiscard]] bool shown() const { return m_shown; }
    /// Called by who holds the panes together; calls `appear` or `disappear` where this is a change.
    void setShown(bool shown);
    /// Called when the person comes back to the window while the pane is shown: what other programs may have
    /// changed meanwhile is asked for again.
    virtual void recheck() { }

Q_SIGNALS:
    /// The pane was chosen by its key or by a press, not merely passed by: it may take the keyboard.
    void keyboardOffered();

protected:
    virtual void appear() { }
    virtual void disappear() { }

private:
    bool m_shown = false;
};

} // namespace Quillbrook
