#include "Platform/Linux/Trash/LinuxFileRemoval.h"

#include "Platform/Linux/Files/LinuxErrorText.h"
#include "Platform/Linux/Trash/HeldThing.h"
#include "Platform/Linux/Trash/TreeEraser.h"

#include <QLocale>

namespace Quillbrook {

using namespace Qt::StringLiterals;

LinuxFileRemoval::LinuxFileRemoval(const FileCalls &calls)
    : m_calls(calls)
{
}

std::expected<void, QString> LinuxFileRemoval::remove(const std::string &path, const TakingJudge &judge)
{
    const auto thing = HeldThing::at(m_calls, path);
    if (!thing)
        return std::unexpected(LinuxErrorText::sentence(thing.error()));
    if (const auto sentence = judge ? judge(thing->seen()) : std::nullopt)
        return std::unexpected(*sentence);
    const auto erasure = TreeEraser(m_calls, thing->folder.number()).erase(thing->name.c_str());
    if (!erasure.isComplete())
        return std::unexpected(leftText(erasure));
    return {};
}

QString LinuxFileRemoval::leftText(const Erasure &erasure)
{
    const auto why = LinuxErrorText::sentence(erasure.firstError);
    if (erasure.firstPath.empty() && erasure.failures == 1)
        return why;
    const auto first
        = erasure.firstPath.empty() ? u"It"_s : u'"' + QString::fromStdString(erasure.firstPath) + u'"';
    const auto others = erasure.failures > 1
        ? u" and %1 more"_s.arg(QLocale(QLocale::English, QLocale::UnitedStates)
                                    .toString(static_cast<qulonglong>(erasure.failures - 1)))
        : QString();
    return first + others + u" could not be deleted. "_s + why;
}

} // namespace Quillbrook
