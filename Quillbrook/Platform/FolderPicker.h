#pragma once

// The desktop's own window in which a person picks a folder, and by that hands it to the program.

#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

class FolderPicker
{
public:
    struct Request
    {
        /// Where it opens.
        QString directory{};
        /// What to pick, in a sentence.
        QString message{};
        /// The word on the button that picks.
        QString prompt{};
    };

    virtual ~FolderPicker() = default;
    /// Folders only, one of them, hidden ones not shown. Blocks until the person has answered, while the
    /// event loop goes on. Absolute, in raw bytes; absent when they cancelled. Main thread only.
    [[nodiscard]] virtual std::optional<std::string> pick(const Request &request) = 0;
};

} // namespace Quillbrook
