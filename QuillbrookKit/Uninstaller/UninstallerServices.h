#pragma once

// What the uninstaller asks of the machine. Plain references: the owner outlives every call.

#include "Platform/HomeFolder.h"
#include "Platform/KitServices.h"

#include <QString>

#include <functional>
#include <string>

namespace Quillbrook {

struct UninstallerServices
{
    const FileReading &reading;
    const FileFacts &files;
    const RunningApps &runningApps;
    const Clock &clock;
    const HostGuards *guards = nullptr;
    /// The home folder of the process, in raw bytes, whatever home a call is about.
    std::string processHome{};
    /// What a person reads of a sentence, in which names are filled in afterwards; absent: the sentence.
    std::function<QString(const QString &sentence)> wording{};

    [[nodiscard]] QString worded(const QString &sentence) const
    {
        return wording ? wording(sentence) : sentence;
    }

    /// That part of all there is.
    [[nodiscard]] static UninstallerServices of(const KitServices &kit)
    {
        return { .reading = kit.reading,
            .files = kit.files,
            .runningApps = kit.runningApps,
            .clock = kit.clock,
            .guards = &kit.guards,
            .processHome = kit.home.rawHomeDirectory() };
    }
};

} // namespace Quillbrook
