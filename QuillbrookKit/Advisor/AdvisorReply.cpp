#include "Advisor/AdvisorReply.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace Quillbrook {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

// Follows the object event by event, and ends the reading at the first that can't belong to a reply.
class Reader final : public nlohmann::json_sax<nlohmann::json>
{
public:
    bool null() override { return false; }
    bool number_integer(number_integer_t /*value*/) override { return false; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return false; }
    bool number_float(number_float_t /*value*/, const string_t & /*text*/) override { return false; }
    bool binary(binary_t & /*value*/) override { return false; }
    bool start_array(std::size_t /*elements*/) override { return false; }
    bool end_array() override { return false; }
    bool parse_error(std::size_t /*position*/, const std::string & /*token*/,
        const nlohmann::detail::exception & /*error*/) override
    {
        return false;
    }

    bool start_object(std::size_t /*elements*/) override { return std::exchange(m_isOutside, false); }
    bool end_object() override { return true; }

    bool key(string_t &name) override
    {
        m_field = std::ranges::find(fields, name) - fields.begin();
        return m_field < std::ssize(fields) && !std::exchange(m_seen.at(static_cast<size_t>(m_field)), true);
    }
    bool boolean(bool value) override
    {
        reply.proposesRemoval = value;
        return !m_isOutside && m_field == 1;
    }
    bool string(string_t &value) override
    {
        if (m_isOutside || m_field == 1)
            return false;
        auto &text = m_field == 0 ? reply.answer : m_field == 2 ? reply.groupId : reply.alsoConsiderGroupId;
        text = QString::fromStdString(value);
        return true;
    }

    [[nodiscard]] bool isWhole() const { return std::ranges::all_of(m_seen, std::identity()); }

    AdvisorReply reply;

private:
    static constexpr std::array<std::string_view, 4> fields{ "answer", "proposesRemoval", "groupID",
        "alsoConsiderGroupID" };

    bool m_isOutside = true;
    std::ptrdiff_t m_field = 0;
    std::array<bool, 4> m_seen{};
};

} // namespace

const QByteArray &AdvisorReply::schema()
{
    // Text, and not put together by a library: those sort the fields by their names.
    static const QByteArray text
        = R"({"type":"object","properties":{)"
          R"("answer":{"type":"string","description":"A complete, grammatical sentence answering the question. )"
          R"(Copy the count and size VERBATIM from the list — never compute, estimate or round them. Match the )"
          R"(verb to the number. Example for count=1: 'There is 1 Android emulator, using 10.8 GB.' Example )"
          R"(for count=5: 'There are 5 iOS simulators, using 10.4 GB.'"},)"
          R"("proposesRemoval":{"type":"boolean","description":"true ONLY if the user asked to delete, remove, )"
          R"(clear or free something"},)"
          R"("groupID":{"type":"string","description":"When proposesRemoval is true, the exact group id being )"
          R"(talked about. Otherwise an empty string."},)"
          R"("alsoConsiderGroupID":{"type":"string","description":"A different group id worth mentioning )"
          R"(because clearing it would also free space, or an empty string."}},)"
          R"("required":["answer","proposesRemoval","groupID","alsoConsiderGroupID"],)"
          R"("additionalProperties":false})";
    return text;
}

std::optional<AdvisorReply> AdvisorReply::decode(QByteArrayView json)
{
    const std::string_view text(json.data(), static_cast<std::size_t>(json.size()));
    // The library would pass over one.
    if (text.starts_with(byteOrderMark))
        return std::nullopt;
    Reader reader;
    if (!nlohmann::json::sax_parse(text, &reader) || !reader.isWhole())
        return std::nullopt;
    return reader.reply;
}

} // namespace Quillbrook
