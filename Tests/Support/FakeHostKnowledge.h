#pragma once

// A host that knows what a test sets, the same for every home folder.

#include "Catalogue/HostKnowledge.h"

namespace Quillbrook {

class FakeHostKnowledge final : public HostKnowledge
{
public:
    [[nodiscard]] HostFacts about(const std::string & /*home*/) const override { return facts; }

    HostFacts facts{};
};

} // namespace Quillbrook
