#pragma once

// Shows a file by the file manager's own D-Bus interface; where none answers, by the desktop portal, and
// where that is missing too, by opening the folder that holds the file.

#include "Platform/FileRevealer.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>

namespace Quillbrook {

class LinuxFileRevealer final : public QObject, public FileRevealer
{
    Q_OBJECT

public:
    /// How long each service has to answer before the next way is tried.
    static constexpr std::chrono::milliseconds patience{ 5000 };

    explicit LinuxFileRevealer(const QDBusConnection &sessionBus = QDBusConnection::sessionBus(),
        std::chrono::milliseconds timeout = patience);

    void reveal(const std::string &path) override;

private:
    void askPortal(const std::string &path);
    void openFolder(const std::string &path);

    QDBusConnection m_bus;
    std::chrono::milliseconds m_timeout;
};

/// The file URI of a path in raw bytes: each byte that a URI can't hold is percent-encoded, so that a name
/// that is not UTF-8 survives.
[[nodiscard]] QString fileUri(const std::string &path);

} // namespace Quillbrook
