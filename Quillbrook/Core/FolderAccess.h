#pragma once

// The right to read the person's home folder. Outside a sandbox the program simply reads; inside one it reads
// what the person has handed it, and keeps that across starts. Main thread only; the services outlive it.

#include <QObject>
#include <QString>

#include <optional>
#include <string>

namespace Quillbrook {

class AppModel;
struct AppServices;

class FolderAccess : public QObject
{
    Q_OBJECT

public:
    /// Takes up the grant that was kept.
    explicit FolderAccess(const AppServices &services, QObject *parent = nullptr);

    /// Lets the person pick their home folder; cancelling changes nothing.
    void request();
    /// Forgets the grant.
    void revoke();
    /// Whether access to the granted folder is open now.
    bool beginAccess();
    /// Has the model scan what may be read. False, with nothing changed, while the gate stands.
    [[nodiscard]] bool prepare(AppModel &model);

    [[nodiscard]] bool isSandboxed() const;
    /// The gate stands before everything else: in a sandbox, with nothing granted.
    [[nodiscard]] bool isGated() const { return isSandboxed() && !m_granted; }
    /// The folder that was handed over; absolute, in raw bytes.
    [[nodiscard]] const std::optional<std::string> &granted() const { return m_granted; }
    /// What to scan, in raw bytes; empty when there is nothing that may be.
    [[nodiscard]] std::string scanRoot() const;
    /// The granted folder's path, or that there is none.
    [[nodiscard]] QString grantedName() const;
    /// By its path alone, the granted folder does not lie on the startup disk.
    [[nodiscard]] bool grantedIsWrongVolume() const;

Q_SIGNALS:
    void grantedChanged();

private:
    void restoreBookmark();
    void store(const std::string &path);
    void setGranted(const std::optional<std::string> &path);

    const AppServices &m_services;
    std::optional<std::string> m_granted;
    std::optional<std::string> m_accessing;
};

} // namespace Quillbrook
