#pragma once

// Whether the program starts with the session. Main thread only.

#include <QFuture>
#include <QString>

#include <expected>

namespace Quillbrook {

class LoginItem
{
public:
    virtual ~LoginItem() = default;
    /// What is true now, whoever made it so.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// Asks for it. A failure is a text for the log. The answer comes on the main thread, and may wait for
    /// the person.
    [[nodiscard]] virtual QFuture<std::expected<void, QString>> setEnabled(bool enabled) = 0;
};

} // namespace Quillbrook
