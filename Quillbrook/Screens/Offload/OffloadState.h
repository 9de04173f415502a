#pragma once

// What the screen "Move to another drive" shows and does: what could move, where to, how far a copy is, and
// what lies on other drives already. Main thread only; the model outlives it.

#include "Catalogue/Finding.h"
#include "Offload/MovedThings.h"
#include "Screens/Offload/OffloadRowsModel.h"
#include "Screens/PaneState.h"

#include <QString>
#include <QStringList>
#include <QtQmlIntegration>

namespace Quillbrook {

class AppModel;

class OffloadState : public PaneState
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window is handed its state")

    /// What could be moved, in all.
    Q_PROPERTY(QString total READ total NOTIFY rowsChanged FINAL)
    Q_PROPERTY(Quillbrook::OffloadRowsModel *candidates READ candidates CONSTANT FINAL)
    Q_PROPERTY(Quillbrook::OffloadRowsModel *moved READ moved CONSTANT FINAL)
    /// The chosen folder, and a line about it; why there is none, or what to do, where there is none.
    Q_PROPERTY(QString destination READ destination NOTIFY destinationChanged FINAL)
    Q_PROPERTY(QString destinationText READ destinationText NOTIFY destinationChanged FINAL)
    Q_PROPERTY(bool destinationFailed READ destinationFailed NOTIFY destinationChanged FINAL)
    /// What files lose there; empty for most.
    Q_PROPERTY(QString lossNote READ lossNote NOTIFY destinationChanged FINAL)
    /// Of a slow destination; empty otherwise.
    Q_PROPERTY(QString slowWarning READ slowWarning NOTIFY destinationChanged FINAL)
    Q_PROPERTY(bool acceptSlowBus READ acceptSlowBus WRITE setAcceptSlowBus NOTIFY acceptSlowBusChanged FINAL)
    Q_PROPERTY(QStringList activity READ activity NOTIFY activityChanged FINAL)
    /// The question before something is brought back.
    Q_PROPERTY(QString questionTitle READ questionTitle NOTIFY questionChanged FINAL)
    Q_PROPERTY(QString questionMessage READ questionMessage NOTIFY questionChanged FINAL)

public:
    explicit OffloadState(AppModel &model, QObject *parent = nullptr);

    [[nodiscard]] QString total() const;
    [[nodiscard]] OffloadRowsModel *candidates() { return &m_candidates; }
    [[nodiscard]] OffloadRowsModel *moved() { return &m_moved; }
    [[nodiscard]] QString destination() const;
    [[nodiscard]] QString destinationText() const;
    [[nodiscard]] bool destinationFailed() const;
    [[nodiscard]] QString lossNote() const;
    [[nodiscard]] QString slowWarning() const;
    [[nodiscard]] bool acceptSlowBus() const { return m_acceptSlowBus; }
    void setAcceptSlowBus(bool accepts);
    [[nodiscard]] QStringList activity() const;
    [[nodiscard]] QString questionTitle() const;
    [[nodiscard]] QString questionMessage() const;

    /// Lets the person pick a folder, and measures it.
    Q_INVOKABLE void chooseVolume();
    /// Moves what a row of `candidates` tells of, or asks for a volume where none was chosen.
    Q_INVOKABLE void move(int row);
    /// Takes down what a row of `moved` tells of, and asks whether to bring it back.
    Q_INVOKABLE void askToBringBack(int row);
    Q_INVOKABLE void bringBack();
    Q_INVOKABLE void stop();
    void recheck() override;

Q_SIGNALS:
    void rowsChanged();
    void destinationChanged();
    void acceptSlowBusChanged();
    void activityChanged();
    void questionChanged();
    void bringBackAsked();
    /// A volume has to be chosen first.
    void volumeWanted();

protected:
    /// Follows the drives for as long as it is shown.
    void appear() override;
    void disappear() override;

private:
    void refresh();
    [[nodiscard]] bool canMove() const;
    [[nodiscard]] OffloadRow candidateRow(const Finding &finding) const;
    [[nodiscard]] OffloadRow movedRow(const MovedThing &thing) const;
    void addProgress(OffloadRow &row) const;

    AppModel &m_model;
    OffloadRowsModel m_candidates;
    OffloadRowsModel m_moved;
    QList<Finding> m_findings;
    std::optional<MovedThing> m_asked;
    bool m_acceptSlowBus = false;
};

} // namespace Quillbrook
