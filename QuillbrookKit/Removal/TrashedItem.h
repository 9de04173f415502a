#pragma once

// One thing that the program itself moved to the Trash. A plain value.

#include <QDateTime>
#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

struct TrashedItem
{
    /// A UUID in capitals, without braces.
    QString id{};
    /// What a person knows it by.
    QString label{};
    /// Where it was, in raw bytes.
    std::string originalPath{};
    /// Where it lies in the Trash, in raw bytes.
    std::string trashPath{};
    /// As known when it was moved.
    qint64 bytes = 0;
    QDateTime movedAt{};
    /// True when an automation rule moved it; absent when it was moved by hand.
    std::optional<bool> byRule{};

    bool operator==(const TrashedItem &) const = default;

    /// A row of its own for what has just been moved by hand, with a new `id`.
    [[nodiscard]] static TrashedItem moved(TrashedItem facts);
    /// The same thing as moved by a rule.
    [[nodiscard]] TrashedItem markedByRule() const;
};

} // namespace Quillbrook
