#pragma once

// What keeping the ledger asks of the machine. Plain references: the owner outlives the ledger.

namespace Quillbrook {

class FileFacts;
class FileReading;
class FileWriting;
class Trash;

struct LedgerServices
{
    const FileReading &reading;
    FileWriting &writing;
    const FileFacts &files;
    Trash &trash;
};

} // namespace Quillbrook
