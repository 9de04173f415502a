#include "Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace Quillbrook {

void fatal(const char *message)
{
    std::fprintf(stderr, "Quillbrook: %s\n", message);
    std::abort();
}

} // namespace Quillbrook
