#include "RawText.h"

#include <algorithm>

namespace Quillbrook {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

// QString::fromUtf8 drops one leading mark.
QString repairedText(std::string_view raw)
{
    QString marks;
    for (; raw.starts_with(byteOrderMark); raw.remove_prefix(byteOrderMark.size()))
        marks += QChar(QChar::ByteOrderMark);
    return marks + QString::fromUtf8(raw.data(), static_cast<qsizetype>(raw.size()));
}

std::string rawPathBelow(const std::string &folder, const QString &path)
{
    const auto text = repairedText(folder);
    const bool isBelow = path == text || path.startsWith(text + u'/');
    return isBelow ? folder + path.sliced(text.size()).toStdString() : path.toStdString();
}

bool isAscii(std::string_view bytes)
{
    return std::ranges::none_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

} // namespace Quillbrook
