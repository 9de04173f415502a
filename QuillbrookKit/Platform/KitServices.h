#pragma once

// What the Kit asks of the machine, gathered once by the application entry and handed down.
// Plain references: the owner outlives everything that gets them.

namespace Quillbrook {

class DirectoryReading;
class HomeFolder;
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
};

} // namespace Quillbrook
