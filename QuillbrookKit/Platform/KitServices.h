#pragma once

// What the Kit asks of the machine, gathered once by the application entry and handed down.
// Plain references: the owner outlives everything that gets them.

namespace Quillbrook {

class Clock;
class DirectoryReading;
class FileFacts;
class FileReading;
class HomeFolder;
class HostKnowledge;
class ProcessRunner;
class Processors;
class UserDefaults;
class Volumes;

struct KitServices
{
    DirectoryReading &directories;
    Processors &processors;
    Volumes &volumes;
    UserDefaults &defaults;
    HomeFolder &home;
    FileFacts &files;
    FileReading &reading;
    ProcessRunner &processes;
    Clock &clock;
    HostKnowledge &host;
};

} // namespace Quillbrook
