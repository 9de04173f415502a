#pragma once

// Mounts that only this process and its children see, and that go with them. Nothing is ever mounted outside.

#include <QString>

#include <string>

namespace Quillbrook::PrivateMounts {

/// Gives the process mounts of its own. To be called first in main, before any thread starts; gives up root's
/// rights over other users' files where it was not root. Empty on success, else why it is not permitted.
[[nodiscard]] QString enter();
/// Whether something is mounted on exactly this folder or file.
[[nodiscard]] bool isMounted(const std::string &path);

/// One mount, taken away at the end of its life. `failure` is empty when it stands.
class Mounted
{
public:
    /// As mount(2) takes them; checked by looking at the mount table.
    Mounted(const std::string &source, const std::string &path, const char *type, unsigned long flags = 0,
        const std::string &options = {});
    Mounted(const Mounted &) = delete;
    Mounted &operator=(const Mounted &) = delete;
    ~Mounted();

    [[nodiscard]] const QString &failure() const { return m_failure; }

private:
    std::string m_path;
    QString m_failure;
};

} // namespace Quillbrook::PrivateMounts
