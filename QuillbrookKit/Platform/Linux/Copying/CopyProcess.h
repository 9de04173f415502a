#pragma once

// One run of the system's copying tool, in a process of its own that ends with the thread that started it.

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>

namespace Quillbrook {

class CopyProcess
{
public:
    /// An open folder or file, which the tool never looks up by a name, and the path that people know it by.
    struct Place
    {
        int descriptor = -1;
        std::string path{};
    };

    struct Order
    {
        /// Both folders, whose content is copied, or both files. May be open as mere places.
        Place source{};
        Place target{};
        bool isFolder = true;
        std::function<void(qint64 bytes)> onProgress{};
        std::stop_token stop{};
    };

    enum class End : std::uint8_t { whole, failed, stopped };

    struct Result
    {
        End end = End::failed;
        /// What the tool said last; of `failed` alone.
        QString error{};
    };

    [[nodiscard]] static Result run(const Order &order);
};

} // namespace Quillbrook
