// Whatever a file holds, what is understood of it is written so that it is understood again. Links with
// libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Fatal.h"
#include "Removal/JournalFormat.h"

using namespace Quillbrook;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto content = JournalFormat::decode(
        QByteArrayView(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    const auto lines = JournalFormat::encode(content.units);
    if (JournalFormat::encode(JournalFormat::decode(lines).units) != lines)
        fatal("a journal was written that is not the one that was read");
    for (const auto &item : content.leaving)
        if (JournalFormat::decode(JournalFormat::leave(item)).leaving.size() != 1)
            fatal("a line was written that is not understood");
    return 0;
}
