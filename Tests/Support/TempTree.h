#pragma once

// A temporary folder to make things in. Names are raw bytes, relative to it; folders on the way are made.
// Whatever can't be made ends the test at once.

#include <QDir>
#include <QString>

#include <string>

namespace Quillbrook {

class TempTree
{
public:
    explicit TempTree(const QString &place = QDir::tempPath());
    TempTree(const TempTree &) = delete;
    TempTree &operator=(const TempTree &) = delete;
    /// Removes the folder and all in it, whatever its permissions and however long its paths.
    ~TempTree();

    [[nodiscard]] const std::string &path() const { return m_path; }
    [[nodiscard]] std::string path(const std::string &name) const { return m_path + '/' + name; }
    /// For names that are text.
    [[nodiscard]] QString text(const std::string &name = {}) const;

    void folder(const std::string &name) const;
    /// A file of `bytes` written bytes.
    void file(const std::string &name, qint64 bytes = 0) const;
    void fileWith(const std::string &name, const std::string &content) const;
    void link(const std::string &name, const std::string &target) const;
    void hardLink(const std::string &name, const std::string &existing) const;
    void pipe(const std::string &name) const;
    void permissions(const std::string &name, unsigned mode) const;

    /// Bytes on disk as the system tells them of one entry, links not followed.
    [[nodiscard]] qint64 allocated(const std::string &name) const;

private:
    std::string m_path;
};

} // namespace Quillbrook
