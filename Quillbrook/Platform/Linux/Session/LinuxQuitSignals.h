#pragma once

// The signals by which a session manager or a terminal asks a program to end, as a Qt signal. The first one
// only asks; the second ends the process as it would have without this. One object a process, on the main
// thread; with it go the handlers.

#include "Platform/Linux/Files/FileDescriptor.h"
#include "Platform/QuitRequests.h"

#include <memory>

class QSocketNotifier;

namespace Quillbrook {

class LinuxQuitSignals final : public QuitRequests
{
    Q_OBJECT

public:
    explicit LinuxQuitSignals(QObject *parent = nullptr);
    ~LinuxQuitSignals() override;

private:
    void receive();

    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Quillbrook
