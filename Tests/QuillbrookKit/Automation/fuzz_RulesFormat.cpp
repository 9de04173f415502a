// Whatever a file holds, it is rules or it is none, and presets or none; and what was read is written so that
// it is read again. Links with libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Automation/RulesFormat.h"
#include "Fatal.h"

#include <QUtf8StringView>

using namespace Quillbrook;

namespace {

void requireOneLine(const QByteArray &json)
{
    if (!QUtf8StringView(json).isValidUtf8() || json.contains('\n'))
        fatal("a file was written that is not one line of text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView json(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const auto rules = RulesFormat::decode(json)) {
        const auto written = RulesFormat::encode(*rules);
        requireOneLine(written);
        if (RulesFormat::decode(written) != rules)
            fatal("rules were written that are not those that were read");
        for (const auto &rule : *rules)
            if (rule.summary().isEmpty())
                fatal("a rule says nothing");
    }
    if (const auto presets = RulesFormat::decodePresets(json)) {
        const auto written = RulesFormat::encodePresets(*presets);
        requireOneLine(written);
        if (RulesFormat::decodePresets(written) != presets)
            fatal("presets were written that are not those that were read");
    }
    return 0;
}
