#pragma once

// Tells that drives were plugged in or out. Main thread only.

#include <QObject>

namespace Quillbrook {

class DriveChanges : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Nothing is told while it is not watched, as at first.
    virtual void setWatched(bool isWatched) = 0;

Q_SIGNALS:
    void changed();
};

} // namespace Quillbrook
