#pragma once

// The services of a desktop and of the network, made up: nothing leaves the test.

#include "Platform/AppServices.h"
#include "Support/FakeDriveChanges.h"
#include "Support/FakeFileRevealer.h"
#include "Support/FakeFolders.h"
#include "Support/FakeHttpClient.h"
#include "Support/FakeLanguageModel.h"
#include "Support/FakeLinkOpener.h"
#include "Support/FakeLoginItem.h"
#include "Support/FakeNotifier.h"
#include "Support/FakePhotoLibrary.h"
#include "Support/FakeUtilityQueue.h"

namespace Quillbrook {

struct FakeDesktop
{
    FakeFileRevealer revealer;
    FakeNotifier notifier;
    FakeLoginItem loginItem;
    FakeLinkOpener links;
    FakeFolderPicker folderPicker;
    FakeFolderGrants folderGrants;
    FakeDriveChanges driveChanges;
    FakeLanguageModel languageModel;
    FakePhotoLibrary photos;
    FakeHttpClient http;
    FakeUtilityQueue utility;

    /// The application's services: these over `kit`.
    [[nodiscard]] AppServices services(const KitServices &kit)
    {
        return { .kit = kit,
            .revealer = revealer,
            .notifier = notifier,
            .loginItem = loginItem,
            .links = links,
            .folderPicker = folderPicker,
            .folderGrants = folderGrants,
            .driveChanges = driveChanges,
            .languageModel = languageModel,
            .photos = photos,
            .version = QStringLiteral("1.0"),
            .updateFeed = QUrl(QStringLiteral("https://updates.test/version.json")) };
    }
};

} // namespace Quillbrook
