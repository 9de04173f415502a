#pragma once

// Makes the rules happen: fires those that are due when a scan has ended, deletes for good what rules moved
// to the Trash once its time has come, and offers a rule after something large was cleared by hand. Main
// thread only; what it is made with outlives it.

#include "Automation/AutomationStore.h"
#include "Automation/Watcher.h"
#include "Core/RuleRemovals.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <expected>
#include <functional>
#include <optional>

namespace Quillbrook {

class Navigation;
class ScanDriver;
class VolumeFigures;
struct AppServices;

class AutomationDriver : public QObject
{
    Q_OBJECT

public:
    /// The other drivers that rules read, move and refresh.
    struct Others
    {
        ScanDriver &scans;
        Navigation &navigation;
        VolumeFigures &volume;
        RuleRemovals removals;
    };

    /// How often the watcher has seen the disk at some fullness or above, in this run.
    struct Looks
    {
        qsizetype full = 0;
        qsizetype all = 0;

        bool operator==(const Looks &) const = default;
    };

    AutomationDriver(const AppServices &services, const Others &others, QObject *parent = nullptr);

    /// Fires what is due for the present report. One of a scan's closing calls.
    void run();
    /// Deletes what is due for good, and starts a scan where the disk is as full as anything that is on asks
    /// for. It fires nothing itself.
    void tick();
    /// Ticks every 30 minutes from now on; starting again replaces the clock.
    void startClock();

    /// Offers a rule for the largest of what was just cleared by hand, unless an offer stands.
    void offerAfter(const QList<Finding> &cleared);
    void acceptOffer();
    /// From now on the catalogue's rule is not offered again, wherever it finds something.
    void declineOffer();

    [[nodiscard]] const AutomationStore &store() const { return m_store; }
    /// The built-in presets and the host's.
    [[nodiscard]] QList<AutomationPreset> presets() const;
    /// What the host adds to the catalogue: of the last scan, or, before one, as it is now.
    [[nodiscard]] const HostCatalogue &host() const;
    // The same as the store's, and announced.
    std::expected<AutomationRule, RuleError> add(
        const Finding &finding, double triggerUsedPercent, Cadence cadence);
    void remove(const QString &ruleId);
    void setEnabled(const QString &ruleId, bool enabled);
    std::expected<void, RuleError> setPreset(const AutomationPreset &preset, bool on);

    /// What rules did, a line each, oldest first.
    [[nodiscard]] const QStringList &log() const { return m_log; }
    /// What a rule is offered for; absent when no offer stands.
    [[nodiscard]] const std::optional<Finding> &offer() const { return m_offer; }
    /// Of the volume, by its shown figures; 0 while they are not known.
    [[nodiscard]] double usedPercent() const;

    /// Remembers how full the watcher saw the disk.
    void takeLook(const Watcher::Observation &observation);
    [[nodiscard]] Looks looksAt(double triggerUsedPercent) const;

Q_SIGNALS:
    /// The disk is to be measured again.
    void diskChanged();
    /// Rules or presets have changed.
    void rulesChanged();
    void logChanged();
    void offerChanged();
    /// No rule could be made of an accepted offer: a line of the log of what was cleared.
    void offerFailed(const QString &line);
    void looksChanged();

private:
    /// Told the bytes that went for good.
    using Then = std::function<void(qint64 bytes)>;

    void purgeDue(const Then &then);
    void purge(const std::vector<TrashedItem> &items, const Then &then);
    void fire();
    void takeOutcomes(const QList<AutomationStore::Due> &due, double percent,
        const std::vector<Reclaimer::Outcome> &outcomes);
    void tellCleared(qint64 total, qint64 purged, double percent);
    void scanIfFull();
    void appendLog(const QString &line);
    void setOffer(const std::optional<Finding> &offer);
    [[nodiscard]] bool isWorthOffering(const Finding &finding) const;

    const AppServices &m_services;
    ScanDriver &m_scans;
    Navigation &m_navigation;
    VolumeFigures &m_volume;
    RuleRemovals m_removals;
    AutomationStore m_store;
    QStringList m_log;
    std::optional<Finding> m_offer;
    /// Rule ids.
    QSet<QString> m_declined;
    /// Percentages.
    QList<double> m_looks;
    /// A run or a tick waits for something to be removed.
    bool m_isBusy = false;
    mutable std::optional<HostCatalogue> m_hostBeforeScan;
    QTimer m_clock{ this };
};

} // namespace Quillbrook
