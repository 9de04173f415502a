#pragma once

// Whether the person who uses this desktop has asked for less movement on the screen. Main thread only.

#include <QObject>

namespace Quillbrook {

class MotionPreference : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// False until the desktop has said otherwise, and where it says nothing.
    [[nodiscard]] virtual bool isReduced() const = 0;

Q_SIGNALS:
    void changed();
};

} // namespace Quillbrook
