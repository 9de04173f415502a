#include "Platform/Linux/Photos/LinuxPhotoLibrary.h"

#include "Platform/FolderGrants.h"
#include "Platform/FolderPicker.h"
#include "Platform/HomeFolder.h"
#include "Platform/Linux/LinuxDisk.h"
#include "Platform/Linux/Photos/TrashEmptying.h"
#include "Platform/UserDefaults.h"
#include "Removal/PathRemoval.h"

#include <QFile>
#include <QtConcurrent>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto consentKey = u"Quillbrook.photosAllowed"_s;
const auto bookmarkKey = u"Quillbrook.photosBookmark"_s;

} // namespace

PhotoRemoval::Services LinuxPhotoLibrary::removalOn(LinuxDisk &disk, const Clock &clock,
    const HostGuards &guards, const std::string &home, const std::string &dataFolder)
{
    return { .removal = { .trash = disk.trash,
                 .removal = disk.removal,
                 .files = disk.files,
                 .clock = clock,
                 .guards = &guards },
        .reading = disk.reading,
        .writing = disk.writing,
        .home = home,
        .list = PhotoRemoval::standardList(dataFolder) };
}

LinuxPhotoLibrary::LinuxPhotoLibrary(const Services &services)
    : m_services(services)
{
    m_pool.setMaxThreadCount(1);
    if (isSandboxed())
        takeUpGrant();
    else if (m_services.defaults.boolean(consentKey) == true)
        setConsent(Consent::given);
}

bool LinuxPhotoLibrary::isSandboxed() const
{
    return m_services.home.homeDirectory() != m_services.home.realHomeDirectory();
}

void LinuxPhotoLibrary::takeUpGrant()
{
    const auto bookmark = m_services.defaults.data(bookmarkKey);
    const auto resolved = bookmark ? m_services.grants.resolve(*bookmark) : std::nullopt;
    if (resolved && m_services.grants.startAccessing(resolved->path))
        setConsent(Consent::given, resolved->path);
}

void LinuxPhotoLibrary::setConsent(Consent consent, const std::optional<std::string> &granted)
{
    const QMutexLocker lock(&m_lock);
    m_consent = consent;
    m_granted = granted;
}

PhotoFolders LinuxPhotoLibrary::folders() const
{
    if (isSandboxed()) {
        const QMutexLocker lock(&m_lock);
        return { .pictures = m_granted };
    }
    return PhotoFolders::ofUser(m_services.removal.reading, m_services.session.configFolder, m_services.home);
}

PhotoAccess LinuxPhotoLibrary::status() const
{
    const auto consent = [this] {
        const QMutexLocker lock(&m_lock);
        return m_consent;
    }();
    switch (consent) {
    case Consent::given:
        return accessTo(folders());
    case Consent::refused:
        return PhotoAccess::denied;
    default:
        return PhotoAccess::notAsked;
    }
}

PhotoAccess LinuxPhotoLibrary::accessTo(const PhotoFolders &folders) const
{
    const auto access = folders.access();
    return access == PhotoAccess::granted && isWholeKept(folders) ? PhotoAccess::limited : access;
}

bool LinuxPhotoLibrary::isWholeKept(const PhotoFolders &folders) const
{
    return folders.pictures && isKept(*folders.pictures + "/picture");
}

bool LinuxPhotoLibrary::isKept(const std::string &path) const
{
    const auto &removal = m_services.removal;
    return PathRemoval::refusal(path, removal.home, removal.removal.guards).has_value();
}

QFuture<PhotoAccess> LinuxPhotoLibrary::requestAccess(PhotoQuestions &questions)
{
    const auto ask = [this] { return status(); };
    if (m_consent != Consent::notAsked)
        return QtConcurrent::run(&m_pool, ask);
    if (isSandboxed()) {
        takeFromPicker();
        return QtConcurrent::run(&m_pool, ask);
    }
    const auto library = folders();
    QStringList named;
    for (const auto &folder : { library.pictures, library.videos })
        if (folder)
            named.append(QFile::decodeName(folder->c_str()));
    return questions.mayRead(named)
        .then([this](bool isAllowed) { takeAnswer(isAllowed); })
        .then(&m_pool, ask);
}

void LinuxPhotoLibrary::takeAnswer(bool isAllowed)
{
    if (isAllowed)
        m_services.defaults.setBoolean(consentKey, true);
    setConsent(isAllowed ? Consent::given : Consent::refused);
}

void LinuxPhotoLibrary::takeFromPicker()
{
    const auto picked = m_services.picker.pick({ .directory = m_services.home.realHomeDirectory(),
        .message
        = tr("Select the folder that holds your pictures. Quillbrook reads names, dates and sizes in "
             "it, and opens none of them."),
        .prompt = tr("Allow") });
    if (!picked || !m_services.grants.startAccessing(*picked)) {
        setConsent(Consent::refused);
        return;
    }
    if (const auto bookmark = m_services.grants.bookmark(*picked))
        m_services.defaults.setData(bookmarkKey, *bookmark);
    setConsent(Consent::given, picked);
}

std::shared_ptr<const PhotoAssets> LinuxPhotoLibrary::query(const PhotoQuery &query, PhotoWork &work) const
{
    const auto library = folders();
    // Where nothing may go, it can be counted all the same.
    const bool isAllKept = isWholeKept(library);
    PhotoWalk walk(
        query, [&](const std::string &path) { return !isAllKept && isKept(path); }, work);
    for (const auto &root : library.roots())
        if (!walk.walk(root))
            return nullptr;
    return walk.take();
}

PhotoDeletion LinuxPhotoLibrary::deleteAssets(const PhotoAssets &assets, PhotoWork &work)
{
    const QMutexLocker lock(&m_removalLock);
    return removal().moveAll(static_cast<const LinuxPhotoAssets &>(assets), work);
}

PhotoRemoval &LinuxPhotoLibrary::removal() const
{
    if (!m_removal)
        m_removal = std::make_unique<PhotoRemoval>(m_services.removal);
    return *m_removal;
}

HeldPhotos LinuxPhotoLibrary::held() const
{
    const QMutexLocker lock(&m_removalLock);
    const auto held = removal().held();
    if (held.empty())
        return {};
    return { .count = static_cast<qsizetype>(held.size()), .place = held.back().trashPath };
}

PhotoReturn LinuxPhotoLibrary::putBack(PhotoWork &work)
{
    const QMutexLocker lock(&m_removalLock);
    return removal().putBack(work);
}

std::optional<int> LinuxPhotoLibrary::daysInTrash() const
{
    return TrashEmptying::days(m_services.session, m_services.processes, m_services.removal.reading);
}

} // namespace Quillbrook
