#pragma once

// One running program for a session: a second start hands over to the first. Main thread only.

#include <QByteArray>
#include <QObject>

namespace Quillbrook {

class AppInstance : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// True when this process is the one. False when another is, which has then been asked to come forward.
    [[nodiscard]] virtual bool claim() = 0;

Q_SIGNALS:
    /// Another start wants this one's window in front; the token lets it come there, where the desktop asks
    /// for one.
    void activated(const QByteArray &token);
};

} // namespace Quillbrook
