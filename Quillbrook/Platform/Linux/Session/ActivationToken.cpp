#include "Platform/Linux/Session/ActivationToken.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace Quillbrook {

namespace {

constexpr std::string_view name = "XDG_ACTIVATION_TOKEN";
// Compositors give some dozen letters.
constexpr std::size_t longestToken = 1024;

/// "NAME=token" and the zero at its end, which the environment points to for as long as the process lives.
std::array<char, name.size() + 1 + longestToken + 1> entry{};

char *token()
{
    return entry.data() + name.size() + 1;
}

void write(const QByteArray &text)
{
    const bool fits = static_cast<std::size_t>(text.size()) <= longestToken && !text.contains('\0');
    const auto end = fits ? std::ranges::copy(text, token()).out : token();
    *end = '\0';
}

} // namespace

void ActivationToken::reserve()
{
    const auto given = qgetenv(name.data());
    std::ranges::copy(name, entry.begin());
    entry[name.size()] = '=';
    write(given);
    ::putenv(entry.data()); // NOLINT(concurrency-mt-unsafe): before there are threads
}

void ActivationToken::set(const QByteArray &text)
{
    write(text);
    // Qt takes a token that it has used out of the environment, and the place with it.
    if (!text.isEmpty() && ::getenv(name.data()) != token()) // NOLINT(concurrency-mt-unsafe)
        ::putenv(entry.data()); // NOLINT(concurrency-mt-unsafe): into the room that was left
}

} // namespace Quillbrook
