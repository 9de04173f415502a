#pragma once

// One running program for a person's data: a second start hands over to the first. Main thread only.

#include <QByteArray>
#include <QObject>

namespace Quillbrook {

class AppInstance : public QObject
{
    Q_OBJECT

public:
    enum class Start { withWindow, inBackground };

    using QObject::QObject;

    /// True when this process is the one. False when another is, which has then been asked to come forward
    /// where this start wanted a window.
    [[nodiscard]] virtual bool claim(Start start) = 0;
    /// Gives the window system the token by which the window that is shown next may come to the front. It
    /// holds until the event loop goes round.
    virtual void useActivationToken(const QByteArray &token) = 0;

Q_SIGNALS:
    /// Another start wants this one's window in front; the token lets it come there, where the desktop asks
    /// for one.
    void activated(const QByteArray &token);
};

} // namespace Quillbrook
