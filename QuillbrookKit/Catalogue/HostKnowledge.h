#pragma once

// What the platform knows that the built-in tables do not: its own places and rules for the catalogue, and
// its own two fences of a quiet scan.

#include "Catalogue/HostCatalogue.h"
#include "Scan/FastScanner.h"

#include <QSet>
#include <QString>

#include <string>

namespace Quillbrook {

struct HostFacts
{
    HostCatalogue catalogue{};
    /// To be united with the built-in allowlist, key by key.
    FastScanner::Allowlist quietAllowlist{};
    /// Absolute paths, to be united with the built-in protected ones.
    QSet<QString> protectedPaths{};
};

class HostKnowledge
{
public:
    virtual ~HostKnowledge() = default;
    /// What holds for a home folder, an absolute path in raw bytes. May read small files and list folders
    /// there, so that it blocks on the disk. From any thread.
    [[nodiscard]] virtual HostFacts about(const std::string &home) const = 0;
};

} // namespace Quillbrook
