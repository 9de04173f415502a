#include "TreeMaker/FolderOpener.h"

#include <fcntl.h>
#include <unistd.h>

namespace Quillbrook::Benchmarks {

FolderOpener::FolderOpener(const TreePlan &plan, int root)
    : m_plan(plan)
    , m_root(root)
{
}

FolderOpener::~FolderOpener()
{
    if (m_last >= 0)
        ::close(m_last);
}

int FolderOpener::open(std::size_t folder)
{
    if (folder == 0)
        return m_root;
    if (m_last >= 0 && folder == m_lastFolder)
        return m_last;
    constexpr auto flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const auto parent = static_cast<std::size_t>(m_plan.folders[folder].parent);
    const auto opened = m_last >= 0 && parent == m_lastFolder
        ? ::openat(m_last, m_plan.folders[folder].name.c_str(), flags)
        : ::openat(m_root, relativePath(m_plan, folder).c_str(), flags);
    if (m_last >= 0)
        ::close(m_last);
    m_last = opened;
    m_lastFolder = folder;
    return opened;
}

} // namespace Quillbrook::Benchmarks
