#include "Uninstaller/Linux/KeyFile.h"

namespace Quillbrook {

namespace {

struct FreeText
{
    void operator()(char *text) const { g_free(text); }
    void operator()(char **texts) const { g_strfreev(texts); }
};

} // namespace

void KeyFile::Free::operator()(GKeyFile *file) const
{
    g_key_file_unref(file);
}

std::optional<KeyFile> KeyFile::parse(QByteArrayView text)
{
    if (text.isEmpty() || text.contains('\0'))
        return std::nullopt;
    KeyFile file;
    file.m_file.reset(g_key_file_new());
    const auto size = static_cast<gsize>(text.size());
    const bool isUnderstood
        = g_key_file_load_from_data(file.m_file.get(), text.data(), size, G_KEY_FILE_NONE, nullptr) != FALSE;
    return isUnderstood ? std::optional(std::move(file)) : std::nullopt;
}

QString KeyFile::text(const char *group, const char *key) const
{
    const std::unique_ptr<char, FreeText> value(g_key_file_get_string(m_file.get(), group, key, nullptr));
    return QString::fromUtf8(value.get());
}

QString KeyFile::localText(const char *group, const char *key) const
{
    const std::unique_ptr<char, FreeText> value(
        g_key_file_get_locale_string(m_file.get(), group, key, nullptr, nullptr));
    return QString::fromUtf8(value.get());
}

QStringList KeyFile::words(const char *group, const char *key) const
{
    const std::unique_ptr<char *, FreeText> values(
        g_key_file_get_string_list(m_file.get(), group, key, nullptr, nullptr));
    QStringList words;
    for (auto *const *value = values.get(); value != nullptr && *value != nullptr; ++value)
        words.append(QString::fromUtf8(*value));
    return words;
}

bool KeyFile::isTrue(const char *group, const char *key) const
{
    return g_key_file_get_boolean(m_file.get(), group, key, nullptr) != FALSE;
}

int KeyFile::number(const char *group, const char *key) const
{
    return g_key_file_get_integer(m_file.get(), group, key, nullptr);
}

} // namespace Quillbrook
