#pragma once

// The services of a desktop and of the network, made up: nothing leaves the test.

#include "Support/FakeFileRevealer.h"
#include "Support/FakeFolders.h"
#include "Support/FakeHttpClient.h"
#include "Support/FakeLinkOpener.h"
#include "Support/FakeLoginItem.h"
#include "Support/FakeNotifier.h"
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
    FakeHttpClient http;
    FakeUtilityQueue utility;
};

} // namespace Quillbrook
