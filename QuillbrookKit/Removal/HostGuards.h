#pragma once

// What one platform adds to the guards of `PathRemoval`: rows of its own beside the built-in ones, which stay
// as they are. Plain data that outlives every call it is handed to.

#include "Removal/GuardedPath.h"

#include <functional>

namespace Quillbrook {

/// One guard. Of a table the first row that holds gives the answer.
struct Guard
{
    /// Absent when the row does not hold; otherwise what its sentence calls {named}, empty where that does
    /// not occur.
    std::function<std::optional<std::string>(const GuardedPath &path)> names{};
    /// Where it has {path} stands the path with "~" for the home folder, for {name} its last component, for
    /// {rest} what follows the home folder.
    QString sentence{};
};

struct HostGuards
{
    /// After the built-in rows, in this order.
    std::vector<Guard> guards{};
    /// Where homes lie below what is a system root elsewhere.
    bool sparesHomeFromSystemRoots = false;
    /// Where `path`, as it was given, leads without the links on the way to it; its own last component is
    /// followed only where it is "." or "..". The same path where nothing is there, empty where it can't be
    /// told. Both what was given and the answer have to pass.
    std::function<std::string(const std::string &path)> withoutLinks{};
    /// What a person reads of a sentence, in which names are filled in afterwards; absent: the sentence
    /// itself.
    std::function<QString(const QString &sentence)> wording{};
    /// A path without links, seen from the home folder where it leads into that by another mount; itself
    /// otherwise.
    std::function<std::string(const std::string &path)> inHome{};
    /// Where the folders that are kept really lie as far as they are links, asked at each judgement; without
    /// links, absolute. They are kept like the links, though what is in them may go.
    std::function<std::vector<std::string>()> keptTargets{};
};

} // namespace Quillbrook
