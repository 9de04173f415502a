#pragma once

// The texts of a property list, XML or binary, that another program wrote. Its content is not trusted: one
// that is damaged, nested without sense or made to swell when read is no property list here.

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace Quillbrook {

class PropertyList
{
public:
    /// What a file may measure before it is worth reading.
    static constexpr qsizetype maximumBytes = qsizetype{ 16 } * 1024 * 1024;

    /// Absent when `data` is larger than that, can't be understood, or has no dictionary at its top.
    [[nodiscard]] static std::optional<PropertyList> dictionary(const QByteArray &data);

    /// The text under a key of the top dictionary; absent when there is none or it is no text.
    [[nodiscard]] std::optional<QString> text(const char *key) const;

private:
    struct Release
    {
        void operator()(void *root) const;
    };

    explicit PropertyList(void *root);

    std::unique_ptr<void, Release> m_root;
};

} // namespace Quillbrook
