#include "Core/FolderAccess.h"

#include "Core/AppModel.h"
#include "Platform/AppServices.h"
#include "Platform/FolderGrants.h"
#include "Platform/FolderPicker.h"
#include "Platform/HomeFolder.h"
#include "Platform/UserDefaults.h"
#include "RawText.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <string_view>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto bookmarkKey = u"Quillbrook.homeBookmark"_s;

/// What lies below one of these lies on the startup disk.
constexpr std::array<std::string_view, 2> startupDiskPrefixes{ "/Users/", "/System/Volumes/Data/Users/" };

QString parentOf(const QString &path)
{
    const auto slash = path.lastIndexOf(u'/');
    return slash <= 0 ? u"/"_s : path.first(slash);
}

QString lastComponentOf(const QString &path)
{
    const auto name = path.sliced(path.lastIndexOf(u'/') + 1);
    return name.isEmpty() ? u"/"_s : name;
}

} // namespace

FolderAccess::FolderAccess(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
    restoreBookmark();
}

void FolderAccess::request()
{
    const auto home = m_services.kit.home.realHomeDirectory();
    const auto picked = m_services.folderPicker.pick({
        .directory = parentOf(home),
        .message = tr("Select the folder named “%1” — that is your home folder, on this Mac's startup disk.")
                       .arg(lastComponentOf(home)),
        .prompt = tr("Allow"),
    });
    if (picked)
        store(*picked);
}

void FolderAccess::revoke()
{
    if (m_accessing)
        m_services.folderGrants.stopAccessing(*m_accessing);
    m_accessing.reset();
    m_services.kit.defaults.remove(bookmarkKey);
    setGranted(std::nullopt);
}

bool FolderAccess::beginAccess()
{
    if (!m_granted)
        return false;
    if (m_accessing == m_granted)
        return true;
    if (m_accessing) {
        m_services.folderGrants.stopAccessing(*m_accessing);
        m_accessing.reset();
    }
    if (!m_services.folderGrants.startAccessing(*m_granted))
        return false;
    m_accessing = m_granted;
    return true;
}

// A folder that can't be opened is scanned all the same, and then found unreadable.
bool FolderAccess::prepare(AppModel &model)
{
    if (isGated())
        return false;
    beginAccess();
    model.scans().setScanRoot(scanRoot());
    return true;
}

bool FolderAccess::isSandboxed() const
{
    return m_services.kit.home.homeDirectory() != m_services.kit.home.realHomeDirectory();
}

std::string FolderAccess::scanRoot() const
{
    if (m_granted)
        return *m_granted;
    return isSandboxed() ? std::string() : m_services.kit.home.rawRealHomeDirectory();
}

QString FolderAccess::grantedName() const
{
    return m_granted ? repairedText(*m_granted) : tr("not chosen");
}

bool FolderAccess::grantedIsWrongVolume() const
{
    if (!m_granted)
        return false;
    const auto isAbove = [this](std::string_view prefix) { return m_granted->starts_with(prefix); };
    return std::ranges::none_of(startupDiskPrefixes, isAbove)
        && !m_services.folderGrants.isOnStartupDisk(*m_granted);
}

// What can't be resolved stays stored until something replaces it: its folder may come back.
void FolderAccess::restoreBookmark()
{
    if (!isSandboxed())
        return;
    const auto data = m_services.kit.defaults.data(bookmarkKey);
    if (!data)
        return;
    const auto resolved = m_services.folderGrants.resolve(*data);
    if (!resolved)
        return;
    setGranted(resolved->path);
    beginAccess();
    if (resolved->isStale)
        store(resolved->path);
}

void FolderAccess::store(const std::string &path)
{
    const auto bookmark = m_services.folderGrants.bookmark(path);
    if (bookmark)
        m_services.kit.defaults.setData(bookmarkKey, *bookmark);
    else
        qWarning("Quillbrook: could not bookmark %ls", qUtf16Printable(bookmark.error()));
    setGranted(path);
    beginAccess();
}

void FolderAccess::setGranted(const std::optional<std::string> &path)
{
    if (m_granted == path)
        return;
    m_granted = path;
    Q_EMIT grantedChanged();
}

} // namespace Quillbrook
