#pragma once

// The figures of the volume under the sidebar's rows: what is free, how full it is, and why another program
// may show a larger free figure. Main thread only; the model outlives it.

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

/// The gauge's sentences and figures for given sizes in bytes.
struct VolumeGauge
{
    struct Figures
    {
        qint64 free = 0;
        qint64 total = 0;
        /// What is free without, and with, what the system would purge.
        qint64 liveFree = 0;
        qint64 liveOptimistic = 0;
    };

    explicit VolumeGauge(const Figures &figures);
    VolumeGauge() = default;

    /// Share of the volume in use, 0 when the volume's size is not known.
    double usedShare = 0;
    bool isDanger = false;
    QString freeText{};
    QString usedText{};
    /// Empty when the two free figures lie close together.
    QString note{};

    bool operator==(const VolumeGauge &) const = default;
};

class VolumeGaugeState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(double usedShare READ usedShare NOTIFY changed FINAL)
    Q_PROPERTY(bool isDanger READ isDanger NOTIFY changed FINAL)
    Q_PROPERTY(QString freeText READ freeText NOTIFY changed FINAL)
    Q_PROPERTY(QString usedText READ usedText NOTIFY changed FINAL)
    Q_PROPERTY(QString note READ note NOTIFY changed FINAL)

public:
    explicit VolumeGaugeState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] double usedShare() const { return m_gauge.usedShare; }
    [[nodiscard]] bool isDanger() const { return m_gauge.isDanger; }
    [[nodiscard]] const QString &freeText() const { return m_gauge.freeText; }
    [[nodiscard]] const QString &usedText() const { return m_gauge.usedText; }
    [[nodiscard]] const QString &note() const { return m_gauge.note; }

Q_SIGNALS:
    void changed();

private:
    void refresh();

    AppModel &m_model;
    VolumeGauge m_gauge;
};

} // namespace Quillbrook
