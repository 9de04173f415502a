#pragma once

// A path as the guards judge it: standardised, and its names in one of the spellings that Unicode holds to be
// the same, as far as they are text. Raw bytes otherwise. A plain value.

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillbrook {

struct GuardedPath
{
    std::string path{};
    /// What follows the home folder and its slash; absent for what is not below it, empty never.
    std::optional<std::string> rest{};
    bool isHome = false;
    /// False where the host spares the home folder, wherever it lies, from the test for system roots.
    bool fearsSystemRoots = true;

    /// `path` and `home` are standardised already.
    [[nodiscard]] static GuardedPath judge(const std::string &path, const std::string &home);
    /// Text with each name in its composed form; names that are not text stay as they are.
    [[nodiscard]] static std::string composed(const std::string &path);

    /// Whether it is `root` or lies below it; `holds` whether `other` lies below it.
    [[nodiscard]] bool isWithin(std::string_view root) const { return isWithin(path, root); }
    [[nodiscard]] bool holds(std::string_view other) const;
    /// Whether it lies below the home folder and its rest is `root`, or lies below that.
    [[nodiscard]] bool restIsWithin(std::string_view root) const { return rest && isWithin(*rest, root); }
    [[nodiscard]] bool restIs(std::string_view name) const { return rest && *rest == name; }

    /// The names on the way, from the root.
    [[nodiscard]] std::vector<std::string_view> components() const;
    [[nodiscard]] std::string_view lastComponent() const;
    /// With "~" for the home folder.
    [[nodiscard]] std::string friendly() const;

    /// What follows the last dot of `name`, in lower case; empty without one, and for a name whose only dot
    /// is its first character.
    [[nodiscard]] static QString extension(std::string_view name);

private:
    [[nodiscard]] static bool isWithin(std::string_view path, std::string_view root);
};

} // namespace Quillbrook
