#pragma once

// A person who picks the folder that a test names, and a sandbox that grants what a test lets it.

#include "Platform/FolderGrants.h"
#include "Platform/FolderPicker.h"

#include <QList>

#include <vector>

namespace Quillbrook {

class FakeFolderPicker final : public FolderPicker
{
public:
    std::optional<std::string> pick(const Request &request) override
    {
        requests.append(request);
        return answer;
    }

    std::optional<std::string> answer;
    QList<Request> requests;
};

/// A bookmark is the path itself.
class FakeFolderGrants final : public FolderGrants
{
public:
    std::expected<QByteArray, QString> bookmark(const std::string &path) override
    {
        bookmarked.push_back(path);
        if (!canBookmark)
            return std::unexpected(QStringLiteral("no room for it"));
        return QByteArray::fromStdString(path);
    }
    std::optional<Resolved> resolve(const QByteArray &bookmark) override
    {
        if (!canResolve)
            return std::nullopt;
        return Resolved{ .path = bookmark.toStdString(), .isStale = isStale };
    }
    bool startAccessing(const std::string &path) override
    {
        started.push_back(path);
        return grants;
    }
    void stopAccessing(const std::string &path) override { stopped.push_back(path); }
    bool isOnStartupDisk(const std::string &path) const override
    {
        return startupDiskPrefix && path.starts_with(*startupDiskPrefix);
    }

    bool canBookmark = true;
    bool canResolve = true;
    bool isStale = false;
    bool grants = true;
    std::optional<std::string> startupDiskPrefix;
    std::vector<std::string> bookmarked;
    std::vector<std::string> started;
    std::vector<std::string> stopped;
};

} // namespace Quillbrook
