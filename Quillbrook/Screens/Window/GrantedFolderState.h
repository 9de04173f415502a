#pragma once

// In a sandbox, the foot of the sidebar tells which folder was handed over, warns when it lies on the wrong
// disk, and lets it be changed. Main thread only; what it is made from outlives it.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class ContentState;
class FolderAccess;

class GrantedFolderState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Outside a sandbox there is nothing to hand over.
    Q_PROPERTY(bool isShown READ isShown CONSTANT FINAL)
    Q_PROPERTY(bool isWrongVolume READ isWrongVolume NOTIFY changed FINAL)
    /// The folder's path, on one line.
    Q_PROPERTY(QString name READ name NOTIFY changed FINAL)

public:
    GrantedFolderState(FolderAccess &access, ContentState &content, QObject *parent = nullptr);

    /// Forgets the folder and lets the person pick another; what was picked is measured. Returns at once.
    Q_INVOKABLE void change();

    [[nodiscard]] bool isShown() const;
    [[nodiscard]] bool isWrongVolume() const;
    [[nodiscard]] QString name() const;

Q_SIGNALS:
    void changed();

private:
    FolderAccess &m_access;
    ContentState &m_content;
};

} // namespace Quillbrook
