#pragma once

// Assets that exist in a test alone, with a note of which were read.

#include "Photos/PhotoLibrary.h"

namespace Quillbrook {

class MadeAssets final : public PhotoAssets
{
public:
    explicit MadeAssets(std::vector<std::vector<PhotoResource>> assets)
        : m_assets(std::move(assets))
    {
    }
    /// So many of one file each, of which the first `local` lie here.
    [[nodiscard]] static std::shared_ptr<MadeAssets> of(
        qsizetype count, qint64 bytes = 1, qsizetype local = 0)
    {
        std::vector<std::vector<PhotoResource>> assets;
        for (qsizetype i = 0; i < count; ++i)
            assets.push_back({ { .fileSize = bytes, .locallyAvailable = i < local } });
        return std::make_shared<MadeAssets>(std::move(assets));
    }

    [[nodiscard]] qsizetype count() const override { return static_cast<qsizetype>(m_assets.size()); }
    [[nodiscard]] std::vector<PhotoResource> resources(qsizetype index) const override
    {
        read.push_back(index);
        return m_assets[static_cast<size_t>(index)];
    }

    mutable std::vector<qsizetype> read;

private:
    std::vector<std::vector<PhotoResource>> m_assets;
};

} // namespace Quillbrook
