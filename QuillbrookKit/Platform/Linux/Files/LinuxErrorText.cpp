#include "Platform/Linux/Files/LinuxErrorText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace Quillbrook::LinuxErrorText {

namespace {

struct Row
{
    int error;
    QStringView sentence;
};

constexpr std::array<Row, 18> rows{ {
    { EACCES, u"You do not have permission." },
    { EPERM, u"The system does not permit it." },
    { EROFS, u"The disk can only be read." },
    { ENOSPC, u"There is no space left on the disk." },
    { EDQUOT, u"Your share of the disk is used up." },
    { EBUSY, u"The system is using it." },
    { ENOENT, u"It is not there any more." },
    { ENOTDIR, u"It is not there any more." },
    { EEXIST, u"Something else is there by now." },
    { ENOTEMPTY, u"Something new was put into it in the meantime." },
    { ESTALE, u"It was changed in the meantime." },
    { ELOOP, u"A symbolic link is in the way." },
    { EXDEV, u"It is on another volume." },
    { ENOTSUP, u"There is no Trash for it." },
    { ENAMETOOLONG, u"Its path is too long." },
    { EINVAL, u"That is not a path Quillbrook can act on." },
    { EIO, u"The disk reports an error." },
    { EMFILE, u"Too many files are open." },
} };

} // namespace

QString sentence(int error)
{
    const auto row = std::ranges::find(rows, error, &Row::error);
    if (row != rows.end())
        return row->sentence.toString();
    return QString::fromLocal8Bit(std::strerror(error)) + u'.';
}

QStringList sentences()
{
    QStringList sentences;
    for (const auto &row : rows)
        sentences.append(row.sentence.toString());
    return sentences;
}

bool isLackOfSpace(int error)
{
    return error == ENOSPC || error == EDQUOT;
}

} // namespace Quillbrook::LinuxErrorText
