#pragma once

// A row of the screen "Move to another drive": something that can be moved, or lies on another drive. A plain
// value with its words ready to be shown.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

struct OffloadRow
{
    Q_GADGET
    QML_VALUE_TYPE(offloadRow)

    Q_PROPERTY(QString title MEMBER title FINAL)
    Q_PROPERTY(QString detail MEMBER detail FINAL)
    Q_PROPERTY(QString size MEMBER size FINAL)
    Q_PROPERTY(bool warns MEMBER warns FINAL)
    Q_PROPERTY(bool actionEnabled MEMBER actionEnabled FINAL)
    Q_PROPERTY(bool running MEMBER running FINAL)
    Q_PROPERTY(double progress MEMBER progress FINAL)
    Q_PROPERTY(QString progressText MEMBER progressText FINAL)

public:
    /// The finding's id, or the place of what lies elsewhere.
    QString id{};
    QString title{};
    QString detail{};
    QString size{};
    /// The detail tells of something that is amiss.
    bool warns = false;
    bool actionEnabled = false;
    bool running = false;
    /// From 0 to 1, and the same in words; while it runs.
    double progress = 0;
    QString progressText{};

    bool operator==(const OffloadRow &) const = default;
};

} // namespace Quillbrook
