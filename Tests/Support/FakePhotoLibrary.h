#pragma once

// A library that holds what a test lets it.

#include "Support/MadeAssets.h"

#include <functional>
#include <mutex>

namespace Quillbrook {

class FakePhotoLibrary final : public PhotoLibrary
{
public:
    PhotoAccess access = PhotoAccess::notAsked;
    /// What every query gives.
    std::shared_ptr<MadeAssets> assets = MadeAssets::of(0);
    /// Told of each query before it is answered, on its thread.
    std::function<void(const PhotoQuery &query, PhotoWork &work)> before{};
    /// Told of each deletion and each return before it begins, on its thread.
    std::function<void(PhotoWork &work)> beforeChange{};
    bool isAbleToDelete = true;
    QStringList stranded;
    qsizetype heldFiles = 0;
    std::optional<int> days;
    QStringList staying;
    /// How many assets each deletion took that was confirmed, how often something was put back, and how often
    /// it was asked what can be.
    std::vector<qsizetype> deleted;
    int returns = 0;
    mutable std::atomic<int> heldAsked = 0;

    [[nodiscard]] PhotoAccess status() const override { return access; }
    [[nodiscard]] QFuture<PhotoAccess> requestAccess(PhotoQuestions &questions) override
    {
        return questions.mayRead({ QStringLiteral("/home/someone/Pictures") }).then([this](bool isAllowed) {
            access = isAllowed ? PhotoAccess::granted : PhotoAccess::denied;
            return access;
        });
    }
    [[nodiscard]] std::shared_ptr<const PhotoAssets> query(
        const PhotoQuery &query, PhotoWork &work) const override
    {
        if (before)
            before(query, work);
        const std::scoped_lock lock(m_lock);
        m_queries.push_back(query);
        return work.isStopped ? nullptr : assets;
    }
    [[nodiscard]] PhotoDeletion deleteAssets(const PhotoAssets &taken, PhotoWork &work) override
    {
        if (beforeChange)
            beforeChange(work);
        if (!isAbleToDelete || work.isStopped)
            return { .stranded = stranded };
        deleted.push_back(taken.count());
        assets = MadeAssets::of(0);
        return { .succeeded = true };
    }
    [[nodiscard]] HeldPhotos held() const override
    {
        ++heldAsked;
        if (heldFiles == 0)
            return {};
        return { .count = heldFiles, .place = "/trash/files/picture.jpg" };
    }
    PhotoReturn putBack(PhotoWork &work) override
    {
        if (beforeChange)
            beforeChange(work);
        if (work.isStopped)
            return {};
        ++returns;
        const auto returned = heldFiles - staying.size();
        heldFiles = staying.size();
        return { .returned = returned, .stayed = staying };
    }
    [[nodiscard]] std::optional<int> daysInTrash() const override { return days; }

    [[nodiscard]] std::vector<PhotoQuery> queries() const
    {
        const std::scoped_lock lock(m_lock);
        return m_queries;
    }

private:
    mutable std::mutex m_lock;
    mutable std::vector<PhotoQuery> m_queries;
};

} // namespace Quillbrook
