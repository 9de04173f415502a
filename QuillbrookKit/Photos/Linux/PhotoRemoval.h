#pragma once

// Moves pictures to the Trash, all or none, and keeps a list of its own of what went, so that it can be put
// back. The list is a journal beside that of other removals: it is written before each move, outlives a kill
// at any moment, and never becomes part of the ledger, whose things are deleted for good when their time has
// come. After a kill the next start can put back what had gone, and nothing else has changed.
//
// One thread at a time, any; blocks on the disk.

#include "Photos/Linux/LinuxPhotoAssets.h"
#include "Removal/RemovalJournal.h"
#include "Removal/RemovalServices.h"

namespace Quillbrook {

class PhotoRemoval
{
public:
    struct Services
    {
        RemovalServices removal;
        const FileReading &reading;
        FileWriting &writing;
        /// Absolute.
        std::string home{};
        /// The list's file, absolute.
        std::string list{};
    };

    /// The list's file below the folder in which programs keep the user's data.
    [[nodiscard]] static std::string standardList(const std::string &dataFolder);

    /// Reads the list, and drops notes in the Trash that a kill has left without their files. What the
    /// services refer to outlives this object.
    explicit PhotoRemoval(const Services &services);

    /// Moves each file that is still the one that the query saw, and that no guard keeps. Where one can't be
    /// moved, or it is stopped, those that were come back.
    [[nodiscard]] PhotoDeletion moveAll(const LinuxPhotoAssets &assets, PhotoWork &work);

    /// What lies in the Trash still, in the order in which it went.
    [[nodiscard]] std::vector<TrashedItem> held() const;
    /// Puts all of it back, until it is stopped. Nothing is replaced.
    PhotoReturn putBack(PhotoWork &work);

private:
    void takeUp();
    [[nodiscard]] std::expected<TrashedItem, QString> move(
        const LinuxPhotoAssets &assets, const PhotoFile &file);
    [[nodiscard]] std::optional<QString> objection(
        const TakenThing &thing, const PhotoFile &file, const std::string &judged) const;
    [[nodiscard]] QStringList returnAll(const std::vector<TrashedItem> &moved);

    Services m_services;
    RemovalJournal m_list;
};

} // namespace Quillbrook
