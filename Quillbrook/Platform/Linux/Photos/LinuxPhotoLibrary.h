#pragma once

// The library of pictures on Linux: the user's own folders for pictures and videos, with the desktop's Trash
// for what is deleted. The person is asked once, in the program's own words, and that they agreed is kept; a
// refusal holds for this run. In a sandbox they hand over the folder in the desktop's own window instead.

#include "Photos/Linux/PhotoFolders.h"
#include "Photos/Linux/PhotoRemoval.h"
#include "Platform/Linux/Session/DesktopSession.h"

#include <QCoreApplication>
#include <QMutex>
#include <QThreadPool>

namespace Quillbrook {

class FolderGrants;
class FolderPicker;
class ProcessRunner;
class UserDefaults;
struct LinuxDisk;

class LinuxPhotoLibrary final : public PhotoLibrary
{
    Q_DECLARE_TR_FUNCTIONS(LinuxPhotoLibrary)

public:
    struct Services
    {
        PhotoRemoval::Services removal;
        UserDefaults &defaults;
        const HomeFolder &home;
        const ProcessRunner &processes;
        FolderPicker &picker;
        FolderGrants &grants;
        const DesktopSession &session;
    };

    /// What moves pictures of the home folder at `home` to the Trash, its list being among the user's data at
    /// `dataFolder` (both absolute, raw bytes). What it refers to outlives whoever gets it.
    [[nodiscard]] static PhotoRemoval::Services removalOn(LinuxDisk &disk, const Clock &clock,
        const HostGuards &guards, const std::string &home, const std::string &dataFolder);

    /// What the services refer to outlives this object. Main thread.
    explicit LinuxPhotoLibrary(const Services &services);

    [[nodiscard]] PhotoAccess status() const override;
    [[nodiscard]] QFuture<PhotoAccess> requestAccess(PhotoQuestions &questions) override;
    [[nodiscard]] std::shared_ptr<const PhotoAssets> query(
        const PhotoQuery &query, PhotoWork &work) const override;
    [[nodiscard]] PhotoDeletion deleteAssets(const PhotoAssets &assets, PhotoWork &work) override;
    [[nodiscard]] HeldPhotos held() const override;
    PhotoReturn putBack(PhotoWork &work) override;
    [[nodiscard]] std::optional<int> daysInTrash() const override;

private:
    enum class Consent : std::uint8_t { notAsked, given, refused };

    [[nodiscard]] bool isSandboxed() const;
    void takeUpGrant();
    void takeFromPicker();
    void takeAnswer(bool isAllowed);
    void setConsent(Consent consent, const std::optional<std::string> &granted = {});
    [[nodiscard]] PhotoFolders folders() const;
    /// `limited` too where nothing may go.
    [[nodiscard]] PhotoAccess accessTo(const PhotoFolders &folders) const;
    /// The guards keep whatever lies among the pictures, because of where that is.
    [[nodiscard]] bool isWholeKept(const PhotoFolders &folders) const;
    /// By a guard of removals.
    [[nodiscard]] bool isKept(const std::string &path) const;
    [[nodiscard]] PhotoRemoval &removal() const;

    const Services m_services;
    mutable QMutex m_lock;
    Consent m_consent = Consent::notAsked;
    /// In a sandbox, the folder that was handed over.
    std::optional<std::string> m_granted;
    /// Only with `m_removalLock`; made when it is first wanted, because that reads a file.
    mutable QMutex m_removalLock;
    mutable std::unique_ptr<PhotoRemoval> m_removal;
    QThreadPool m_pool;
};

} // namespace Quillbrook
