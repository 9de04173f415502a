#pragma once

// The sheet in which a rule is made for one finding. Main thread only; the driver outlives it.

#include "Catalogue/Finding.h"

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

#include <optional>

namespace Quillbrook {

class AutomationDriver;

class RuleEditorState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(bool isOpen READ isOpen NOTIFY draftChanged FINAL)
    Q_PROPERTY(QString heading READ heading NOTIFY draftChanged FINAL)
    Q_PROPERTY(QString what READ what NOTIFY draftChanged FINAL)
    /// At what percentage it fires, from 70 to 99, and the words for it.
    Q_PROPERTY(double threshold READ threshold WRITE setThreshold NOTIFY thresholdChanged FINAL)
    Q_PROPERTY(QString thresholdLabel READ thresholdLabel NOTIFY thresholdChanged FINAL)
    /// What would go now.
    Q_PROPERTY(QString dryRun READ dryRun NOTIFY dryRunChanged FINAL)
    /// How often, by the position of its words.
    Q_PROPERTY(QStringList cadences READ cadences CONSTANT FINAL)
    Q_PROPERTY(int cadence READ cadence WRITE setCadence NOTIFY cadenceChanged FINAL)
    /// Why the rule could not be made; empty where it was not tried.
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged FINAL)

public:
    static constexpr double lowestThreshold = 70.0;
    static constexpr double highestThreshold = 99.0;
    static constexpr double firstThreshold = 96.0;

    explicit RuleEditorState(AutomationDriver &automation, QObject *parent = nullptr);

    [[nodiscard]] bool isOpen() const { return m_draft.has_value(); }
    [[nodiscard]] QString heading() const;
    [[nodiscard]] QString what() const;
    [[nodiscard]] double threshold() const { return m_threshold; }
    [[nodiscard]] QString thresholdLabel() const;
    [[nodiscard]] QString dryRun() const;
    [[nodiscard]] QStringList cadences() const;
    [[nodiscard]] int cadence() const { return m_cadence; }
    [[nodiscard]] const QString &problem() const { return m_problem; }

    void open(const Finding &draft);
    void setThreshold(double threshold);
    void setCadence(int cadence);
    /// As a new screen shows them.
    void resetChoices();
    /// Makes the rule and closes; where that fails the sheet stays and says why.
    Q_INVOKABLE void create();
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void draftChanged();
    void thresholdChanged();
    void dryRunChanged();
    void cadenceChanged();
    void problemChanged();

private:
    void setProblem(const QString &problem);

    AutomationDriver &m_automation;
    std::optional<Finding> m_draft;
    double m_threshold = firstThreshold;
    int m_cadence = 0;
    QString m_problem;
};

} // namespace Quillbrook
