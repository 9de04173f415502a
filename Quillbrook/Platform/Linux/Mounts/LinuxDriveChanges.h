#pragma once

// Changes of the kernel's mount table. Several within a moment are told as one.

#include "Platform/DriveChanges.h"
#include "Platform/Linux/Files/FileDescriptor.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>

namespace Quillbrook {

class LinuxDriveChanges final : public DriveChanges
{
    Q_OBJECT

public:
    LinuxDriveChanges();

    void setWatched(bool isWatched) override;

private:
    FileDescriptor m_table;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_settling;
};

} // namespace Quillbrook
