#pragma once

// The four fields that the language model fills in. All of it is untrusted: the answer is only ever shown,
// and an id has to be looked up among the present findings before anything comes of it. Pure functions, any
// thread.

#include <QByteArray>
#include <QString>

#include <optional>

namespace Quillbrook {

struct AdvisorReply
{
    QString answer{};
    bool proposesRemoval = false;
    QString groupId{};
    QString alsoConsiderGroupId{};

    bool operator==(const AdvisorReply &) const = default;

    /// What the model is told of the fields, as JSON in UTF-8. A server has the fields written in the order
    /// in which they stand there, the answer first.
    [[nodiscard]] static const QByteArray &schema();
    /// Absent unless it is one JSON object in UTF-8 of exactly these fields, each once and of its own type.
    [[nodiscard]] static std::optional<AdvisorReply> decode(QByteArrayView json);
};

} // namespace Quillbrook
