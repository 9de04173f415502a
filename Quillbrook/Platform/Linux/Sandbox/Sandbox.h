#pragma once

// Which sandbox this process runs in: inside one, the desktop is reached by its portals alone.

#include <QProcessEnvironment>
#include <QString>

namespace Quillbrook {

struct Sandbox
{
    enum class Kind { none, flatpak, snap };

    Kind kind = Kind::none;
    /// The name under which the sandbox knows the program; empty outside one.
    QString application{};

    /// That of this process. `root` is the root folder to look in. A program that merely inherited the
    /// environment of a sandboxed one is in none.
    [[nodiscard]] static Sandbox detect(const QString &root = QStringLiteral("/"),
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

    [[nodiscard]] bool isNone() const { return kind == Kind::none; }
    bool operator==(const Sandbox &) const = default;
};

} // namespace Quillbrook
