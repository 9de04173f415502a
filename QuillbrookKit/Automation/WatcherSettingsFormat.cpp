#include "Automation/WatcherSettingsFormat.h"

#include "JsonValues.h"

namespace Quillbrook::WatcherSettingsFormat {

using namespace JsonValues;

QByteArray toJson(const Watcher::Settings &settings)
{
    Json object;
    object["lowSpaceBytes"] = settings.lowSpaceBytes;
    object["minimumWorthMentioning"] = settings.minimumWorthMentioning;
    object["interval"] = settings.interval;
    object["quietPeriod"] = settings.quietPeriod;
    object["enabled"] = settings.enabled;
    return QByteArray::fromStdString(object.dump());
}

std::optional<Watcher::Settings> fromJson(QByteArrayView json)
{
    const auto object = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    const auto lowSpaceBytes = wholeNumber(object, "lowSpaceBytes");
    const auto minimumWorthMentioning = wholeNumber(object, "minimumWorthMentioning");
    const auto interval = number(object, "interval");
    const auto quietPeriod = number(object, "quietPeriod");
    const auto enabled = boolean(object, "enabled");
    if (!lowSpaceBytes || !minimumWorthMentioning || !interval || !quietPeriod || !enabled)
        return std::nullopt;
    return Watcher::Settings{ .lowSpaceBytes = *lowSpaceBytes,
        .minimumWorthMentioning = *minimumWorthMentioning,
        .interval = *interval,
        .quietPeriod = *quietPeriod,
        .enabled = *enabled };
}

} // namespace Quillbrook::WatcherSettingsFormat
