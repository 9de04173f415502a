#pragma once

// The rows of the screen "Apps", with their words ready to be shown. Plain values.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

/// One application.
struct AppRow
{
    Q_GADGET
    QML_VALUE_TYPE(appRow)

    Q_PROPERTY(QString name MEMBER name FINAL)
    Q_PROPERTY(QString detail MEMBER detail FINAL)
    Q_PROPERTY(QString tag MEMBER tag FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(QString icon MEMBER icon FINAL)
    Q_PROPERTY(QString spoken MEMBER spoken FINAL)

public:
    QString name{};
    /// Under the name: the version, and whose size is told where it isn't the application's own.
    QString detail{};
    /// The store it came from; empty for others.
    QString tag{};
    /// A dash until it is measured.
    QString size{};
    /// Address of a picture; empty without one.
    QString icon{};
    QString spoken{};

    bool operator==(const AppRow &) const = default;
};

/// Something with a tick: what is left of an application that is gone, or of one that is to go.
struct LeftoverRow
{
    Q_GADGET
    QML_VALUE_TYPE(leftoverRow)

    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString note MEMBER note FINAL)
    Q_PROPERTY(QString path MEMBER path FINAL)
    Q_PROPERTY(QString what MEMBER what FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(QString spoken MEMBER spoken FINAL)
    Q_PROPERTY(QString evidence MEMBER evidence FINAL)
    Q_PROPERTY(bool isTicked MEMBER isTicked FINAL)
    Q_PROPERTY(bool isLocked MEMBER isLocked FINAL)
    Q_PROPERTY(bool isOpen MEMBER isOpen FINAL)

public:
    QString title{};
    /// Behind the title, what kind it is and how old.
    QString note{};
    /// Shortened for reading.
    QString path{};
    /// What it is good for.
    QString what{};
    QString size{};
    QString spoken{};
    /// What speaks for it, a line each.
    QString evidence{};
    bool isTicked = false;
    /// It is only shown.
    bool isLocked = false;
    /// What speaks for it is shown.
    bool isOpen = false;

    bool operator==(const LeftoverRow &) const = default;
};

} // namespace Quillbrook
