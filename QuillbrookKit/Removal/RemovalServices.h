#pragma once

// What removing asks of the machine. Plain references: the owner outlives every call.

namespace Quillbrook {

class Clock;
class FileFacts;
class FileRemoval;
class Trash;

struct RemovalServices
{
    Trash &trash;
    FileRemoval &removal;
    const FileFacts &files;
    const Clock &clock;
};

} // namespace Quillbrook
