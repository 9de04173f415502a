#pragma once

// Drives that answer what a test sets, and a disk on which copies succeed at once. What was asked is read
// while nobody asks.

#include "Platform/Drives.h"
#include "Platform/RelocationDisk.h"
#include "Platform/SpeedProbe.h"

#include <map>
#include <vector>

namespace Quillbrook {

class FakeDrives final : public Drives
{
public:
    [[nodiscard]] DriveFacts facts(const std::string &) const override { return answer; }
    [[nodiscard]] std::optional<bool> areOnOneFileSystem(
        const std::string &, const std::string &) const override
    {
        return areOne;
    }
    [[nodiscard]] QString name(const std::string &) const override { return drive; }
    [[nodiscard]] QString likelyName(const std::string &) const override { return drive; }

    DriveFacts answer{};
    std::optional<bool> areOne = false;
    QString drive = QStringLiteral("Backup");
};

class FakeSpeedProbe final : public SpeedProbe
{
public:
    [[nodiscard]] std::expected<MeasuredSpeed, QString> measure(const Sample &sample) const override
    {
        samples.push_back(sample);
        if (onMeasure)
            onMeasure(sample);
        return answer;
    }

    std::expected<MeasuredSpeed, QString> answer = MeasuredSpeed{ .writeSeconds = 0.1, .readSeconds = 0.05 };
    /// Called on the measuring thread. May be empty.
    std::function<void(const Sample &sample)> onMeasure{};
    mutable std::vector<Sample> samples;
};

class FakeRelocationDisk final : public RelocationDisk
{
public:
    [[nodiscard]] std::optional<QString> objection(const std::string &, const std::string &) const override
    {
        return why;
    }
    [[nodiscard]] std::optional<QString> objection(const std::string &) const override { return why; }
    [[nodiscard]] CopyResult copy(const CopyOrder &order) const override
    {
        orders.push_back(order);
        auto result = onCopy ? onCopy(order) : CopyResult{ .made = FileIdentity{ .device = 1, .inode = 2 } };
        result.stopped = result.stopped || order.stop.stop_requested();
        if (result.stopped)
            result.error = QStringLiteral("stopped");
        return result;
    }
    void drop(const std::string &path, const FileIdentity &) const override { dropped.push_back(path); }
    [[nodiscard]] bool isStill(const std::string &, const FileIdentity &) const override { return true; }
    [[nodiscard]] std::optional<qint64> allocated(const std::string &) const override { return size; }
    [[nodiscard]] std::expected<void, QString> link(
        const std::string &place, const std::string &target) const override
    {
        made[place] = target;
        return {};
    }
    [[nodiscard]] std::optional<LinkFacts> linkAt(const std::string &place) const override
    {
        if (onFollow)
            onFollow(place);
        const auto found = links.find(place);
        return found == links.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::optional<LinkFacts> unfollowedLinkAt(const std::string &place) const override
    {
        const auto found = links.find(place);
        if (found == links.end())
            return std::nullopt;
        auto facts = found->second;
        facts.leadsSomewhere = false;
        return facts;
    }
    [[nodiscard]] std::expected<void, QString> putInPlaceOfLink(
        const std::string &, const FileIdentity &, const std::string &, const FileIdentity &) const override
    {
        return {};
    }

    /// What is in the way of everything.
    std::optional<QString> why{};
    /// Every file's, a copy's among them.
    std::optional<qint64> size{};
    std::map<std::string, LinkFacts> links;
    /// Called on the thread that follows a link. May be empty.
    std::function<void(const std::string &place)> onFollow{};
    /// Called on the copying thread. May be empty.
    std::function<CopyResult(const CopyOrder &order)> onCopy{};
    mutable std::vector<CopyOrder> orders;
    mutable std::vector<std::string> dropped;
    mutable std::map<std::string, std::string> made;
};

} // namespace Quillbrook
