// Whatever a file holds, it is a ledger or it is none; and what was read is written so that it is read again.
// Links with libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Fatal.h"
#include "Removal/LedgerFormat.h"

#include <QUtf8StringView>

using namespace Quillbrook;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto items = LedgerFormat::decode(
        QByteArrayView(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (!items)
        return 0;
    const auto json = LedgerFormat::encode(*items);
    if (!QUtf8StringView(json).isValidUtf8() || json.contains('\n'))
        fatal("a ledger was written that is not one line of text");
    if (LedgerFormat::decode(json) != items)
        fatal("a ledger was written that is not the one that was read");
    return 0;
}
