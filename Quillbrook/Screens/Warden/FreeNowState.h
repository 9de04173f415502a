#pragma once

// The question that comes up when something has just gone to the Trash: whether to free the space at once.
// Main thread only; the model outlives it.

#include "Screens/Warden/EarlierThings.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class FreeNowState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Whether the question stands.
    Q_PROPERTY(bool asked READ asked NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    /// What else would go, since it lay in the Trash before.
    Q_PROPERTY(Quillbrook::EarlierThings *earlier READ earlier CONSTANT FINAL)

public:
    explicit FreeNowState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool asked() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] EarlierThings *earlier() { return &m_earlier; }

    /// Deletes for good what Quillbrook moved, and what of the rest is ticked.
    Q_INVOKABLE void free();
    /// Lets it lie.
    Q_INVOKABLE void keep();

Q_SIGNALS:
    void changed();

private:
    AppModel &m_model;
    EarlierThings m_earlier;
};

} // namespace Quillbrook
