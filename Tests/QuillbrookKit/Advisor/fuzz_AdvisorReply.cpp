// Whatever a server answers, it holds a reply or it holds none; and what was read is text.
// Links with libFuzzer, and with Support/FuzzDriver.cpp where the compiler has none.

#include "Advisor/AdvisorReply.h"
#include "Advisor/ModelAnswers.h"
#include "Fatal.h"

#include <QUtf8StringView>

using namespace Quillbrook;

namespace {

void check(const std::optional<QByteArray> &content)
{
    if (content && !QUtf8StringView(*content).isValidUtf8())
        fatal("a reply is no text");
    if (content)
        static_cast<void>(AdvisorReply::decode(*content));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    check(ModelAnswers::ollamaReply(text));
    check(ModelAnswers::completionsReply(text));
    static_cast<void>(ModelAnswers::ollamaModels(text));
    static_cast<void>(ModelAnswers::ollamaDetails(text));
    static_cast<void>(ModelAnswers::models(text));
    static_cast<void>(ModelAnswers::llamaContext(text));
    const auto reply = AdvisorReply::decode(text);
    if (reply && !QStringView(reply->answer + reply->groupId + reply->alsoConsiderGroupId).isValidUtf16())
        fatal("a reply is no text");
    return 0;
}
