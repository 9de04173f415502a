#pragma once

// The folder window of the desktop's portal in a sandbox, where picking is what hands a folder over. Anywhere
// else, and where no portal hands over folders, Qt's own, which is the desktop's where it has one.

#include "Platform/FolderPicker.h"

#include <QDBusConnection>
#include <QVariantMap>

#include <chrono>

namespace Quillbrook {

class LinuxFolderPicker final : public FolderPicker
{
public:
    struct Options
    {
        bool isSandboxed = false;
        /// How long the portal has to say what it can do.
        std::chrono::milliseconds patience{ 3000 };
        /// How long the person has to answer.
        std::chrono::milliseconds leisure{ std::chrono::hours(1) };
    };

    explicit LinuxFolderPicker(
        Options options, const QDBusConnection &sessionBus = QDBusConnection::sessionBus());

    /// Absent also when the portal fails or goes away, when the program is quitting, and while an earlier
    /// question is still open. Qt's own window picks only what has text for its path.
    [[nodiscard]] std::optional<std::string> pick(const Request &request) override;

private:
    [[nodiscard]] bool hasPortal() const;
    [[nodiscard]] std::optional<std::string> pickByPortal(const Request &request) const;

    Options m_options;
    QDBusConnection m_bus;
    bool m_isPicking = false;
};

/// The path that a file URI names, in raw bytes and without a slash at its end; absent for whatever is no
/// local file.
[[nodiscard]] std::optional<std::string> pathOfFileUri(const QString &uri);

} // namespace Quillbrook
