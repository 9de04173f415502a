#pragma once

// What the home folder's volume holds, for the gauge and the menu bar. Main thread only; the services and the
// scans outlive it.

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

namespace Quillbrook {

class ScanDriver;
struct KitServices;

class VolumeFigures : public QObject
{
    Q_OBJECT

public:
    VolumeFigures(const KitServices &kit, const ScanDriver &scans, QObject *parent = nullptr);

    /// Reads the figures anew; when they can't be read, the earlier ones stay.
    void refreshVolume();
    void refreshMenuBarTitle();
    /// Refreshes the figures every 60 seconds from now on; starting again replaces the clock.
    void startClock();

    // Bytes. A report's figures go before the live ones.
    [[nodiscard]] qint64 volumeFree() const;
    [[nodiscard]] qint64 volumeTotal() const;
    [[nodiscard]] qint64 liveFree() const { return m_liveFree; }
    /// What is free as it was last read, 0 being a figure too; absent before it could be read.
    [[nodiscard]] std::optional<qint64> measuredFree() const { return m_measuredFree; }
    /// Counts as free what the system can clear by itself.
    [[nodiscard]] qint64 liveOptimistic() const { return m_liveOptimistic; }
    [[nodiscard]] qint64 liveTotal() const { return m_liveTotal; }
    [[nodiscard]] const QString &menuBarTitle() const { return m_menuBarTitle; }

Q_SIGNALS:
    void volumeChanged();
    void menuBarTitleChanged();

private:
    const KitServices &m_kit;
    const ScanDriver &m_scans;
    std::optional<qint64> m_measuredFree;
    qint64 m_liveFree = 0;
    qint64 m_liveOptimistic = 0;
    qint64 m_liveTotal = 0;
    QString m_menuBarTitle = QStringLiteral("—");
    QTimer m_volumeClock{ this };
};

} // namespace Quillbrook
