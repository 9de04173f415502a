#pragma once

// What the language model is shown before the first question: a line for each measured group, and the rules
// that it answers by. Sizes, counts and dates stand in it, and never a path, a name from the disk or anything
// of a file's content. It stays English whatever the person reads. Pure functions, any thread.

#include "Catalogue/Finding.h"

#include <QDateTime>
#include <QList>

namespace Quillbrook {

struct HostCatalogue;

namespace AdvisorPrompt {

/// A finding, and how many items it opens into; 0 where it opens into none or nobody can tell.
struct Group
{
    Finding finding{};
    qsizetype itemCount = 0;
};

struct Facts
{
    /// In the order in which they are listed.
    QList<Group> groups{};
    /// Bytes free on the volume.
    qint64 volumeFree = 0;
    /// What ages are counted up to.
    QDateTime now = QDateTime::currentDateTime();
    /// Null: the built-in relations alone. Outlives the call.
    const HostCatalogue *host = nullptr;
};

[[nodiscard]] QString instructions(const Facts &facts);

/// A text as one line that can stand between double quotes: of what a person sees as one character it holds
/// at most `limit`, and "…" where that cut it short.
[[nodiscard]] QString sanitise(const QString &text, qsizetype limit);

} // namespace AdvisorPrompt

} // namespace Quillbrook
