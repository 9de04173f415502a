#include "TreeMaker/Names.h"

#include "TreeMaker/Random.h"

#include <array>

namespace Quillbrook::Benchmarks {

namespace {

using namespace std::string_view_literals;

constexpr std::array words{ "account"sv, "adapter"sv, "asset"sv, "backup"sv, "button"sv, "cache"sv, "chart"sv,
    "client"sv, "color"sv, "config"sv, "core"sv, "data"sv, "default"sv, "driver"sv, "editor"sv, "event"sv,
    "export"sv, "filter"sv, "font"sv, "format"sv, "graph"sv, "handler"sv, "helper"sv, "icon"sv, "image"sv,
    "import"sv, "index"sv, "input"sv, "invoice"sv, "item"sv, "layout"sv, "letter"sv, "library"sv, "list"sv,
    "loader"sv, "manager"sv, "message"sv, "model"sv, "module"sv, "network"sv, "notes"sv, "object"sv,
    "output"sv, "parser"sv, "plugin"sv, "profile"sv, "project"sv, "query"sv, "record"sv, "report"sv,
    "request"sv, "result"sv, "schema"sv, "search"sv, "server"sv, "service"sv, "session"sv, "settings"sv,
    "shared"sv, "source"sv, "state"sv, "stream"sv, "style"sv, "table"sv, "template"sv, "test"sv, "theme"sv,
    "token"sv, "types"sv, "util"sv, "value"sv, "vendor"sv, "version"sv, "view"sv, "widget"sv, "window"sv };
constexpr std::array longWords{ "internationalization"sv, "authentication-provider"sv,
    "configuration-management"sv, "representation"sv, "compatibility-layer"sv };
constexpr std::array sourceEndings{ ".cpp"sv, ".h"sv, ".py"sv, ".rs"sv, ".go"sv, ".java"sv, ".md"sv, ".o"sv,
    ".txt"sv, ".toml"sv, ".sh"sv, ""sv };
constexpr std::array packageEndings{ ".js"sv, ".js"sv, ".d.ts"sv, ".js.map"sv, ".ts"sv, ".json"sv, ".css"sv,
    ".mjs"sv, ".svg"sv, ".md"sv };
constexpr std::array photoEndings{ ".jpg"sv, ".jpg"sv, ".jpg"sv, ".png"sv, ".heic"sv, ".mp4"sv };
constexpr std::array documentEndings{ ".pdf"sv, ".odt"sv, ".docx"sv, ".xlsx"sv, ".txt"sv, ".eml"sv };
constexpr std::array documentWords{ "Rechnung März"sv, "Résumé"sv, "Übersicht"sv, "報告書"sv, "Отчёт"sv,
    "Letter to the landlord"sv, "Tax return"sv, "Minutes of the meeting"sv, "Scan"sv, "Travel plan"sv };

constexpr auto digits = "0123456789abcdefghijklmnopqrstuvwxyz"sv;

std::string inBase(std::uint64_t value, std::uint64_t base, size_t atLeast = 1)
{
    std::string text;
    for (; value > 0 || text.size() < atLeast; value /= base)
        text.insert(text.begin(), digits[value % base]);
    return text;
}

std::string_view word(Random &random)
{
    if (random.chance(20))
        return commonWord;
    return random.chance(40) ? random.pick(std::span(longWords)) : random.pick(std::span(words));
}

std::string wordsAndNumber(
    std::uint64_t number, std::span<const std::string_view> endings, std::string_view joint, Random &random)
{
    std::string name(word(random));
    if (random.chance(500)) {
        name += joint;
        name += word(random);
    }
    name += joint;
    name += inBase(number, 10);
    name += random.pick(endings);
    return name;
}

std::string photoName(std::uint64_t number, Random &random)
{
    const auto year = random.between(2009, 2025);
    const auto month = random.between(1, 12);
    const auto day = random.between(1, 28);
    return "IMG_" + inBase(year * 10000 + month * 100 + day, 10) + "_" + inBase(number, 10, 6)
        + std::string(random.pick(std::span(photoEndings)));
}

std::string documentName(std::uint64_t number, Random &random)
{
    std::string name(random.pick(std::span(documentWords)));
    // Few names are very long, as saved web pages and mails have them.
    if (random.chance(20))
        while (name.size() < 100)
            name += " " + std::string(word(random));
    return name + " " + inBase(number, 10) + std::string(random.pick(std::span(documentEndings)));
}

std::string styledName(NameStyle style, std::uint64_t number, Random &random)
{
    switch (style) {
    case NameStyle::source:
        return wordsAndNumber(number, sourceEndings, "_", random);
    case NameStyle::package:
        return wordsAndNumber(number, packageEndings, "-", random);
    case NameStyle::hashes:
        return inBase(random.next(), 16, 16) + inBase(number, 16, 8);
    case NameStyle::photos:
        return photoName(number, random);
    case NameStyle::documents:
        return documentName(number, random);
    }
    return {};
}

} // namespace

std::string makeFolderName(NameStyle style, std::uint64_t number, Random &random)
{
    switch (style) {
    case NameStyle::source:
    case NameStyle::package:
        return std::string(word(random)) + (random.chance(300) ? "-" : ".") + inBase(number, 36);
    case NameStyle::hashes:
        return inBase(random.below(256), 16, 2) + inBase(number, 36);
    case NameStyle::photos:
        return inBase(random.between(2009, 2025), 10) + "-" + inBase(random.between(1, 12), 10, 2) + " "
            + inBase(number, 10);
    case NameStyle::documents:
        return std::string(random.pick(std::span(documentWords))) + " " + inBase(number, 10);
    }
    return {};
}

std::string makeFileName(NameStyle style, std::uint64_t number, std::uint64_t serial, Random &random)
{
    auto name = styledName(style, number, random);
    if (serial % rareWordEvery == rareWordEvery / 2)
        return std::string(rareWord) + "-" + name;
    // What few people have and every program has to live with: names that are not text or not one line.
    if (serial % rareWordEvery == 1)
        return "caf\xe9 " + name;
    if (serial % rareWordEvery == 2)
        return "two\nlines " + name;
    return name;
}

} // namespace Quillbrook::Benchmarks
