#pragma once

// The state that all screens share: one object for each thing that the application drives, and how they meet.
// It lives on the main thread. Whatever takes long runs on the thread pool, takes and returns values, and
// ends silently when it is out of date.

#include "Core/AutomationDriver.h"
#include "Core/Navigation.h"
#include "Core/OffloadDriver.h"
#include "Core/PathRemovals.h"
#include "Core/QuestionDriver.h"
#include "Core/ReclaimDriver.h"
#include "Core/RemovalBooks.h"
#include "Core/RemovalQueue.h"
#include "Core/ScanDriver.h"
#include "Core/UninstallDriver.h"
#include "Core/UpdateDriver.h"
#include "Core/VolumeFigures.h"
#include "Core/WatchDriver.h"
#include "Platform/AppServices.h"

#include <QObject>

namespace Quillbrook {

class Background;

class AppModel : public QObject
{
    Q_OBJECT

public:
    /// What the services refer to outlives the model.
    explicit AppModel(const AppServices &services, QObject *parent = nullptr);
    /// What is being removed ends after its present entry, what is being moved to another drive ends as a
    /// stop ends it, and both are waited for.
    ~AppModel() override;

    [[nodiscard]] ScanDriver &scans() { return m_scans; }
    [[nodiscard]] const ScanDriver &scans() const { return m_scans; }
    [[nodiscard]] Navigation &navigation() { return m_navigation; }
    [[nodiscard]] const Navigation &navigation() const { return m_navigation; }
    [[nodiscard]] VolumeFigures &volume() { return m_volume; }
    [[nodiscard]] const VolumeFigures &volume() const { return m_volume; }
    [[nodiscard]] RemovalQueue &removals() { return m_removals; }
    [[nodiscard]] const RemovalQueue &removals() const { return m_removals; }
    [[nodiscard]] RemovalBooks &books() { return m_books; }
    [[nodiscard]] const RemovalBooks &books() const { return m_books; }
    [[nodiscard]] ReclaimDriver &reclaims() { return m_reclaims; }
    [[nodiscard]] const ReclaimDriver &reclaims() const { return m_reclaims; }
    [[nodiscard]] PathRemovals &pathRemovals() { return m_pathRemovals; }
    [[nodiscard]] const PathRemovals &pathRemovals() const { return m_pathRemovals; }
    [[nodiscard]] AutomationDriver &automation() { return m_automation; }
    [[nodiscard]] const AutomationDriver &automation() const { return m_automation; }
    [[nodiscard]] UninstallDriver &uninstalls() { return m_uninstalls; }
    [[nodiscard]] OffloadDriver &offloads() { return m_offloads; }
    [[nodiscard]] const OffloadDriver &offloads() const { return m_offloads; }
    [[nodiscard]] WatchDriver &watch() { return m_watch; }
    [[nodiscard]] const WatchDriver &watch() const { return m_watch; }
    [[nodiscard]] UpdateDriver &updates() { return m_updates; }
    [[nodiscard]] const UpdateDriver &updates() const { return m_updates; }
    [[nodiscard]] QuestionDriver &questions() { return m_questions; }
    [[nodiscard]] const QuestionDriver &questions() const { return m_questions; }
    [[nodiscard]] const AppServices &services() const { return m_services; }

    /// What the start of the program sets going, in the background as with a window, and each opening of the
    /// window anew: the clocks, what listens to the watcher, the volume's figures, and what holds without a
    /// window. A newer version and the backups' state are asked for the first time only.
    void start(Background &background);
    /// Starts the clocks of the model; starting again replaces them.
    void startRuleClock();

private:
    [[nodiscard]] RuleRemovals ruleRemovals();
    void endScan();

    // Each refers to some of those above it, and goes before them.
    AppServices m_services;
    ScanDriver m_scans;
    VolumeFigures m_volume;
    Navigation m_navigation;
    RemovalQueue m_removals;
    RemovalBooks m_books;
    ReclaimDriver m_reclaims;
    PathRemovals m_pathRemovals;
    AutomationDriver m_automation;
    UninstallDriver m_uninstalls;
    OffloadDriver m_offloads;
    WatchDriver m_watch;
    UpdateDriver m_updates;
    QuestionDriver m_questions;
    bool m_hasStarted = false;
};

} // namespace Quillbrook
