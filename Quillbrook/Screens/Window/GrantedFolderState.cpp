#include "Screens/Window/GrantedFolderState.h"

#include "Core/FolderAccess.h"
#include "Screens/SingleLine.h"
#include "Screens/Window/ContentState.h"

namespace Quillbrook {

GrantedFolderState::GrantedFolderState(FolderAccess &access, ContentState &content, QObject *parent)
    : QObject(parent)
    , m_access(access)
    , m_content(content)
{
    connect(&m_access, &FolderAccess::grantedChanged, this, &GrantedFolderState::changed);
}

// Later, not within the press: the folder window has an event loop of its own.
void GrantedFolderState::change()
{
    const auto changeFolder = [this] {
        m_access.revoke();
        m_access.request();
        if (m_access.granted())
            m_content.rescan();
    };
    QMetaObject::invokeMethod(this, changeFolder, Qt::QueuedConnection);
}

bool GrantedFolderState::isShown() const
{
    return m_access.isSandboxed();
}

bool GrantedFolderState::isWrongVolume() const
{
    return m_access.grantedIsWrongVolume();
}

QString GrantedFolderState::name() const
{
    return singleLine(m_access.grantedName());
}

} // namespace Quillbrook
