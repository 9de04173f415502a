#pragma once

#include <QString>

namespace Quillbrook {

/// Where the scanning stands. `message` is set only for `failed`.
struct Phase
{
    enum class Kind { idle, scanning, ready, failed };

    Kind kind = Kind::idle;
    QString message{};

    bool operator==(const Phase &) const = default;
};

} // namespace Quillbrook
