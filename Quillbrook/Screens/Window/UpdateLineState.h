#pragma once

// The line at the foot of the sidebar that tells of a newer version. Main thread only; the model outlives it.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class UpdateLineState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Empty when nothing newer is known of.
    Q_PROPERTY(QString text READ text NOTIFY changed FINAL)

public:
    explicit UpdateLineState(AppModel &model, QObject *parent = nullptr);

    /// Opens the page of the newer version in the browser.
    Q_INVOKABLE void open();

    [[nodiscard]] QString text() const;

Q_SIGNALS:
    void changed();

private:
    AppModel &m_model;
};

} // namespace Quillbrook
