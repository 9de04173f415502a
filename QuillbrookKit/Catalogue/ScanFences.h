#pragma once

// Where a scan of a home folder does not go.

#include "Scan/FastScanner.h"

#include <QSet>
#include <QString>

namespace Quillbrook {

struct HostFacts;

struct ScanFences
{
    /// Absolute paths that the tree scan neither enters nor measures.
    QSet<QString> exclusions{};
    /// For some folders, the only children that the tree scan enters; empty: every child.
    FastScanner::Allowlist allowlist{};
    /// Absolute paths whose locations the catalogue passes over.
    QSet<QString> skipping{};

    /// A quiet scan opens nothing that a privacy layer guards or that the host counts among a person's own,
    /// so that it raises no question.
    [[nodiscard]] static ScanFences quiet(const QString &home, const HostFacts &host);
    /// A complete scan walks all but what no scan ever measures.
    [[nodiscard]] static ScanFences complete();
};

} // namespace Quillbrook
