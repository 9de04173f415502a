#pragma once

// The system that the program runs on: all that it gives the program, put together in one file, which the
// build chooses for the system. Another system gets a folder beside `Linux` here and in the Kit's rooms, and
// a file like `Linux/LinuxMachine.cpp` that answers what this header and those it names ask for. Main thread
// only.

#include <memory>

namespace Quillbrook {

class AppInstance;
class MotionPreference;
class QuitRequests;
class TrayItem;
struct AppServices;

class Machine
{
public:
    /// Prepares the process itself: before the application object is made, and before there are threads.
    static void prepareProcess();
    /// Made after the application object, and gone before it.
    [[nodiscard]] static std::unique_ptr<Machine> ofThisSystem();

    Machine() = default;
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;
    virtual ~Machine() = default;

    // All that it hands out lives as long as this.

    /// To be claimed before anything else is asked for, because that writes files.
    [[nodiscard]] virtual AppInstance &instance() = 0;
    [[nodiscard]] virtual AppServices services() = 0;
    [[nodiscard]] virtual MotionPreference &motion() = 0;
    [[nodiscard]] virtual TrayItem &tray() = 0;
    [[nodiscard]] virtual QuitRequests &quitRequests() = 0;
};

} // namespace Quillbrook
