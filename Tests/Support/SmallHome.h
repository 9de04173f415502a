#pragma once

// A made-up home folder with one project, one file beside it and a folder that a quiet scan does not open.
// For tests of how a scan goes.

#include "Core/AppModel.h"
#include "Support/FakeServices.h"

#include <algorithm>

namespace Quillbrook {

struct SmallHome : FakeServices
{
    SmallHome()
    {
        directories.folder("/home/someone",
            { FakeDirectories::aFolder("project"), FakeDirectories::aFile("b.txt", 8192),
                FakeDirectories::aFolder("Documents") });
        directories.folder("/home/someone/project", { FakeDirectories::aFile("a.txt", 4096) });
        directories.folder("/home/someone/Documents", { FakeDirectories::aFile("c.txt", 16384) });
    }

    [[nodiscard]] bool wasOpened(const std::string &path) const
    {
        const auto opened = directories.opened();
        return std::ranges::find(opened, path) != opened.end();
    }
};

[[nodiscard]] inline bool isAt(const AppModel &model, Phase::Kind kind)
{
    return model.scans().phase().kind == kind;
}

} // namespace Quillbrook
