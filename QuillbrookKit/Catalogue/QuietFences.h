#pragma once

// Where a quiet scan of a home folder does not go: it opens nothing that a privacy layer guards or that the
// host counts among a person's own, so that it raises no question.

#include "Scan/FastScanner.h"

#include <QSet>
#include <QString>

namespace Quillbrook {

struct HostFacts;

struct QuietFences
{
    /// Absolute paths that the tree scan neither enters nor measures.
    QSet<QString> exclusions{};
    /// For some folders, the only children that the tree scan enters.
    FastScanner::Allowlist allowlist{};
    /// Absolute paths whose locations the catalogue passes over.
    QSet<QString> skipping{};

    [[nodiscard]] static QuietFences of(const QString &home, const HostFacts &host);
};

} // namespace Quillbrook
