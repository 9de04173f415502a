#pragma once

// What the application asks of the machine, gathered once by the application entry and handed down.

#include "Platform/KitServices.h"

#include <QString>
#include <QUrl>

namespace Quillbrook {

class DriveChanges;
class FileRevealer;
class FolderGrants;
class FolderPicker;
class LanguageModel;
class LinkOpener;
class LoginItem;
class Notifier;
class PhotoLibrary;

struct AppServices
{
    KitServices kit;
    FileRevealer &revealer;
    Notifier &notifier;
    LoginItem &loginItem;
    LinkOpener &links;
    FolderPicker &folderPicker;
    FolderGrants &folderGrants;
    DriveChanges &driveChanges;
    LanguageModel &languageModel;
    PhotoLibrary &photos;
    /// Of the running program.
    QString version{};
    /// Where a newer version would be told of.
    QUrl updateFeed{};
};

} // namespace Quillbrook
