#pragma once

// What the screen "Automatic rules" shows and does: presets, the person's own rules, what rules have done,
// and what is worth one. Main thread only; the model outlives it.

#include "Screens/PaneState.h"
#include "Screens/Rules/RuleEditorState.h"
#include "Screens/Rules/RulesListModel.h"

#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class RulesState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    Q_PROPERTY(Quillbrook::RulesListModel *rows READ rows CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::RuleEditorState *editor READ editor CONSTANT FINAL)

public:
    explicit RulesState(AppModel &model, QObject *parent = nullptr);

    /// Up to date while the pane is shown.
    [[nodiscard]] RulesListModel *rows() { return &m_rows; }
    [[nodiscard]] RuleEditorState *editor() { return &m_editor; }

    /// Switches a row's preset or rule; nothing for other rows.
    Q_INVOKABLE void setOn(int row, bool on);
    /// Removes a row's rule.
    Q_INVOKABLE void remove(int row);
    /// Opens the editor for a row's finding.
    Q_INVOKABLE void automate(int row);
    /// What the space bar does at a row: its switch, or its only button.
    Q_INVOKABLE void act(int row);
    /// Ages have gone on.
    void recheck() override;

protected:
    /// The editor's choices are then the usual ones.
    void appear() override;
    void disappear() override;

private:
    [[nodiscard]] const RulesRow *at(int row, RulesLines::Kind kind) const;
    void setPreset(const QString &id, bool on);
    void refresh();

    AppModel &m_model;
    RulesListModel m_rows;
    RuleEditorState m_editor;
    QString m_problem;
};

} // namespace Quillbrook
