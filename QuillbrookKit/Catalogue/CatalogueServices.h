#pragma once

// What the catalogue's operations ask of the machine. Plain references: the owner outlives every call.

namespace Quillbrook {

class Clock;
class DirectoryReading;
class FileFacts;
class FileReading;
class ProcessRunner;
class Processors;
class Volumes;

struct CatalogueServices
{
    DirectoryReading &directories;
    const Processors &processors;
    const Volumes &volumes;
    const FileFacts &files;
    const FileReading &reading;
    const ProcessRunner &processes;
    const Clock &clock;
};

} // namespace Quillbrook
