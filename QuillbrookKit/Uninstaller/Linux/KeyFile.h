#pragma once

// A file of groups, keys and values, as GLib reads one. Its content is not trusted. What is not there, or of
// another kind, reads as nothing.

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <glib.h>
#include <memory>
#include <optional>

namespace Quillbrook {

class KeyFile
{
public:
    /// Absent where it is empty or can't be understood as a whole.
    [[nodiscard]] static std::optional<KeyFile> parse(QByteArrayView text);

    [[nodiscard]] QString text(const char *group, const char *key) const;
    /// The one in the person's language, where there is one.
    [[nodiscard]] QString localText(const char *group, const char *key) const;
    /// What stands between semicolons.
    [[nodiscard]] QStringList words(const char *group, const char *key) const;
    [[nodiscard]] bool isTrue(const char *group, const char *key) const;
    [[nodiscard]] int number(const char *group, const char *key) const;

private:
    struct Free
    {
        void operator()(GKeyFile *file) const;
    };

    std::unique_ptr<GKeyFile, Free> m_file;
};

} // namespace Quillbrook
