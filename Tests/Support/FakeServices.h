#pragma once

// A whole made-up machine for tests of the application's models, at first with an empty disk and without
// volume figures.

#include "Platform/AppServices.h"
#include "Support/FakeDirectories.h"
#include "Support/FakeFileRevealer.h"
#include "Support/FakeHomeFolder.h"
#include "Support/FakeProcessors.h"
#include "Support/FakeUserDefaults.h"
#include "Support/FakeVolumes.h"

namespace Quillbrook {

struct FakeServices
{
    FakeDirectories directories;
    FakeProcessors processors;
    FakeVolumes volumes;
    FakeUserDefaults defaults;
    FakeHomeFolder home;
    FakeFileRevealer revealer;

    AppServices services{
        .kit = { .directories = directories,
            .processors = processors,
            .volumes = volumes,
            .defaults = defaults,
            .home = home },
        .revealer = revealer,
    };
};

} // namespace Quillbrook
