#pragma once

// What the Kit asks of the machine, gathered once by the application entry and handed down.
// Plain references: the owner outlives everything that gets them.

#include <string>

namespace Quillbrook {

class BackupProbe;
class Clock;
class DirectoryReading;
class Drives;
class FileFacts;
class FileReading;
class FileRemoval;
class FileWriting;
class HomeFolder;
class HostApplications;
class HostCounters;
class HostKnowledge;
class HttpClient;
class ProcessRunner;
class Processors;
class RelocationDisk;
class RunningApps;
class SpaceHolders;
class SpeedProbe;
class Trash;
class UserDefaults;
class UtilityQueue;
class Volumes;
struct HostGuards;

struct KitServices
{
    DirectoryReading &directories;
    Processors &processors;
    Volumes &volumes;
    UserDefaults &defaults;
    HomeFolder &home;
    HostCounters &counters;
    FileFacts &files;
    FileReading &reading;
    ProcessRunner &processes;
    RunningApps &runningApps;
    SpaceHolders &spaceHolders;
    Clock &clock;
    HostKnowledge &host;
    Trash &trash;
    FileRemoval &removal;
    FileWriting &writing;
    RelocationDisk &relocation;
    Drives &drives;
    SpeedProbe &speeds;
    BackupProbe &backups;
    HttpClient &http;
    /// The watcher's own.
    UtilityQueue &utility;
    /// The guards that the machine adds to the built-in ones.
    const HostGuards &guards;
    /// The kinds of applications that the machine has beside bundles.
    const HostApplications &applications;
    /// Where programs keep the user's data: absolute, in raw bytes.
    std::string dataFolder{};
};

} // namespace Quillbrook
