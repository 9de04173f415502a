#pragma once

// What keeping the ledger asks of the machine. Plain references: the owner outlives the ledger.

#include "Platform/KitServices.h"

namespace Quillbrook {

struct LedgerServices
{
    const FileReading &reading;
    FileWriting &writing;
    const FileFacts &files;
    Trash &trash;

    /// That part of all there is.
    [[nodiscard]] static LedgerServices of(const KitServices &kit)
    {
        return { .reading = kit.reading, .writing = kit.writing, .files = kit.files, .trash = kit.trash };
    }
};

} // namespace Quillbrook
