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
    bool isAbleToDelete = true;
    QStringList stranded;
    qsizetype held = 0;
    std::optional<int> days;
    QStringList staying;
    /// How many assets each deletion took that was confirmed, and how many were returned.
    std::vector<qsizetype> deleted;
    int returns = 0;

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
    [[nodiscard]] PhotoDeletion deleteAssets(const PhotoAssets &taken, PhotoWork & /*work*/) override
    {
        if (!isAbleToDelete)
            return { .stranded = stranded };
        deleted.push_back(taken.count());
        assets = MadeAssets::of(0);
        return { .succeeded = true };
    }
    [[nodiscard]] qsizetype heldCount() const override { return held; }
    [[nodiscard]] std::optional<std::string> heldPlace() const override
    {
        return held > 0 ? std::optional<std::string>("/trash/files/picture.jpg") : std::nullopt;
    }
    PhotoReturn putBack() override
    {
        ++returns;
        const auto returned = held - staying.size();
        held = staying.size();
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
