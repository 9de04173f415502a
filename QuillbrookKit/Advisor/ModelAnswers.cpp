#include "Advisor/ModelAnswers.h"

#include "Advisor/AdvisorPrompt.h"
#include "JsonValues.h"

#include <algorithm>
#include <vector>

namespace Quillbrook::ModelAnswers {

using namespace Qt::StringLiterals;
using namespace JsonValues;

namespace {

constexpr qsizetype longestName = 60;
/// Of one object; what follows is left out. Each is compared with all before it, and anybody may answer.
constexpr int mostKeys = 1000;

Json parsed(const QByteArray &body)
{
    std::vector<int> keys;
    const auto isKept = [&keys](int depth, Json::parse_event_t event, const Json & /*value*/) {
        const auto level = static_cast<size_t>(depth);
        keys.resize(std::max(keys.size(), level + 2));
        if (event == Json::parse_event_t::object_start)
            keys[level + 1] = 0;
        return event != Json::parse_event_t::key || ++keys[level] <= mostKeys;
    };
    return Json::parse(body.cbegin(), body.cend(), isKept, false);
}

bool endsWith(const std::string &text, const char *ending)
{
    return text.ends_with(ending);
}

/// Ollama passes on questions to models that it only knows by name. Such names end like this, besides what
/// the answer says of them.
bool isElsewhere(const Json &model, const std::string &id)
{
    return member(model, "remote_host") != nullptr || member(model, "remote_model") != nullptr
        || endsWith(id, "-cloud") || endsWith(id, ":cloud");
}

std::optional<qint64> positive(const std::optional<qint64> &number)
{
    return number && *number > 0 ? number : std::nullopt;
}

/// "ARCHITECTURE.context_length" among what is told of a model.
std::optional<qint64> contextIn(const Json &info)
{
    if (!info.is_object())
        return std::nullopt;
    for (const auto &[key, value] : info.items()) {
        if (endsWith(key, ".context_length"))
            return positive(wholeNumber(info, key.c_str()));
    }
    return std::nullopt;
}

} // namespace

std::optional<QVersionNumber> ollamaVersion(const QByteArray &body)
{
    const auto version = text(parsed(body), "version");
    const auto number
        = version ? QVersionNumber::fromString(QString::fromStdString(*version)) : QVersionNumber();
    return number.isNull() ? std::nullopt : std::optional(number);
}

std::optional<QList<Listed>> ollamaModels(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *entries = member(answer, "models");
    if (entries == nullptr || !entries->is_array())
        return std::nullopt;
    QList<Listed> models;
    for (const auto &entry : *entries) {
        if (const auto name = text(entry, "name"))
            models.append({ .id = QString::fromStdString(*name), .isElsewhere = isElsewhere(entry, *name) });
    }
    return models;
}

std::optional<Details> ollamaDetails(const QByteArray &body)
{
    const auto answer = parsed(body);
    if (!answer.is_object() || member(answer, "details") == nullptr)
        return std::nullopt;
    Details details{ .isElsewhere = isElsewhere(answer, {}) };
    if (const auto *abilities = member(answer, "capabilities"))
        details.canAnswer
            = abilities->is_array() && std::ranges::find(*abilities, "completion") != abilities->end();
    if (const auto *info = member(answer, "model_info"))
        details.context = contextIn(*info);
    return details;
}

std::optional<QByteArray> ollamaReply(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *message = member(answer, "message");
    if (message == nullptr || boolean(answer, "done") != true || text(answer, "done_reason") != "stop"
        || isElsewhere(answer, {}))
        return std::nullopt;
    const auto content = text(*message, "content");
    return content ? std::optional(QByteArray::fromStdString(*content)) : std::nullopt;
}

bool isHealthy(const QByteArray &body)
{
    return text(parsed(body), "status") == "ok";
}

// The second is what older ones say.
bool isLoading(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *error = member(answer, "error");
    return (error != nullptr && text(*error, "type") == "unavailable_error")
        || text(answer, "status") == "loading model";
}

std::optional<QList<Listed>> models(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *entries = member(answer, "data");
    if (text(answer, "object") != "list" || entries == nullptr || !entries->is_array())
        return std::nullopt;
    QList<Listed> models;
    for (const auto &entry : *entries) {
        if (const auto id = text(entry, "id"))
            models.append({ .id = QString::fromStdString(*id),
                .owner = QString::fromStdString(text(entry, "owned_by").value_or(std::string())),
                .context = positive(wholeNumber(entry, "max_model_len")) });
    }
    return models;
}

std::optional<qint64> llamaContext(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *settings = member(answer, "default_generation_settings");
    return settings ? positive(wholeNumber(*settings, "n_ctx")) : std::nullopt;
}

std::optional<QByteArray> completionsReply(const QByteArray &body)
{
    const auto answer = parsed(body);
    const auto *choices = member(answer, "choices");
    if (choices == nullptr || !choices->is_array() || choices->empty())
        return std::nullopt;
    const auto &choice = choices->front();
    const auto *message = member(choice, "message");
    const auto content = message ? text(*message, "content") : std::nullopt;
    if (!content || text(choice, "finish_reason") != "stop")
        return std::nullopt;
    return QByteArray::fromStdString(*content);
}

QString shownName(const QString &id)
{
    const auto ending = u".gguf"_s;
    // A path ends in a file's name; in "maker/model" the maker belongs to it.
    auto name = id.startsWith(u'/') ? id.section(u'/', -1) : id;
    if (name.endsWith(ending))
        name.chop(ending.size());
    name.removeIf([](QChar character) { return !character.isPrint(); });
    return AdvisorPrompt::sanitise(name, longestName);
}

} // namespace Quillbrook::ModelAnswers
