#pragma once

// What the bar under the map and the lists says of the selected item, and what its buttons do. How many
// things a folder holds is counted off the main thread and appears when it is known. Main thread only;
// the model outlives it.

#include "Removal/PathRemoval.h"
#include "Scan/FileTree.h"
#include "Screens/RemovalState.h"

#include <QCoroTask>
#include <QObject>
#include <QtQmlIntegration>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Quillbrook {

class AppModel;

class SelectionBarState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// Whether anything is selected; without it the texts below are empty.
    Q_PROPERTY(bool present READ present NOTIFY itemChanged FINAL)
    Q_PROPERTY(QString symbol READ symbol NOTIFY itemChanged FINAL)
    Q_PROPERTY(QString name READ name NOTIFY itemChanged FINAL)
    Q_PROPERTY(QString size READ size NOTIFY itemChanged FINAL)
    /// Shortened for reading.
    Q_PROPERTY(QString path READ path NOTIFY itemChanged FINAL)
    Q_PROPERTY(bool canOpen READ canOpen NOTIFY itemChanged FINAL)
    /// Why the item must stay; empty where it may go, and until that is known.
    Q_PROPERTY(QString refusal READ refusal NOTIFY refusalChanged FINAL)
    /// It is known that the item may go.
    Q_PROPERTY(bool removable READ removable NOTIFY refusalChanged FINAL)
    /// The question before a removal: its words, and those on its button.
    Q_PROPERTY(QString confirmTitle READ confirmTitle NOTIFY confirmChanged FINAL)
    Q_PROPERTY(QString confirmMessage READ confirmMessage NOTIFY confirmChanged FINAL)
    Q_PROPERTY(QString confirmAction READ confirmAction NOTIFY confirmChanged FINAL)
    Q_PROPERTY(bool permanently READ permanently NOTIFY confirmChanged FINAL)
    /// What is being removed now.
    Q_PROPERTY(Quillbrook::RemovalState *removal READ removal CONSTANT FINAL)
    /// How many things a folder holds; empty until counted, and for fewer than two.
    Q_PROPERTY(QString items READ items NOTIFY itemsChanged FINAL)

public:
    /// How far a folder is counted.
    static constexpr qsizetype itemCap = 5000;

    /// Counts what a folder (raw path) holds, up to a cap; called on a thread of its own.
    using Counter = std::function<PathRemoval::ItemCount(const std::string &path, qsizetype cap)>;

    explicit SelectionBarState(
        AppModel &model, Counter counter = PathRemoval::itemCount, QObject *parent = nullptr);

    [[nodiscard]] bool present() const;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString size() const;
    [[nodiscard]] QString path() const;
    [[nodiscard]] bool canOpen() const;
    [[nodiscard]] QString items() const;
    [[nodiscard]] QString refusal() const;
    [[nodiscard]] bool removable() const;
    [[nodiscard]] QString confirmTitle() const;
    [[nodiscard]] QString confirmMessage() const;
    [[nodiscard]] QString confirmAction() const;
    [[nodiscard]] bool permanently() const { return m_permanently; }
    [[nodiscard]] RemovalState *removal() { return &m_removal; }

    /// Goes into the selected folder and shows the map.
    Q_INVOKABLE void open();
    /// Shows the selected item in the file manager.
    Q_INVOKABLE void reveal();
    /// Clears the selection.
    Q_INVOKABLE void dismiss();
    /// Notes how the item should go, and tells that it has to be asked about.
    Q_INVOKABLE void askToRemove(bool permanently);
    /// Removes the item that was asked about, if it is still the one selected.
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void itemChanged();
    void itemsChanged();
    void refusalChanged();
    void confirmChanged();
    void removeAsked();

private:
    void refresh();
    QCoro::Task<> judge(NodeSnapshot item);
    /// What guards say of an item, once they have, and by what it is known again.
    struct Judgement
    {
        std::optional<QString> refusal{};
        /// Of what lay there when it was picked; 0 for nothing.
        std::uint64_t inode = 0;

        bool operator==(const Judgement &) const = default;
    };
    void setJudgement(const std::optional<Judgement> &judgement);
    QCoro::Task<> count(NodeSnapshot item);
    void setInside(const std::optional<PathRemoval::ItemCount> &inside);

    AppModel &m_model;
    RemovalState m_removal;
    Counter m_counter;
    std::optional<PathRemoval::ItemCount> m_inside;
    std::optional<Judgement> m_judgement;
    std::optional<NodeSnapshot> m_asked;
    std::uint64_t m_askedInode = 0;
    bool m_permanently = false;
};

} // namespace Quillbrook
