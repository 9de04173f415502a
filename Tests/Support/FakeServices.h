#pragma once

// A whole made-up machine for tests of the application's models.

#include "Support/FakeDesktop.h"
#include "Support/FakeKit.h"

namespace Quillbrook {

struct FakeServices : FakeKit
{
    FakeDesktop desktop;
    AppServices services = desktop.services(with({ .http = &desktop.http, .utility = &desktop.utility }));
};

} // namespace Quillbrook
