#pragma once

// Where a scan does not go, by its scope. A quiet scan opens nothing that a privacy layer guards or that the
// host counts among a person's own, so that a first look raises no question; a complete one walks all of the
// home folder but what no scan ever measures.

#include "Core/Scope.h"
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

    [[nodiscard]] static ScanFences of(Scope scope, const QString &root, const HostFacts &host);
};

} // namespace Quillbrook
