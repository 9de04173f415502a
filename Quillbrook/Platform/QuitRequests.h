#pragma once

// Tells when the system asks the program to end. Main thread only.

#include <QObject>

namespace Quillbrook {

class QuitRequests : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    /// From the event loop.
    void asked();
};

} // namespace Quillbrook
