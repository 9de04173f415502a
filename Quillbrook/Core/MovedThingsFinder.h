#pragma once

// Follows what lies on other drives behind links. Each link is looked at on a thread of its own: a drive that
// does not answer, as that of a server that is gone, is told as such and keeps no other waiting. Main thread
// only; what it is made with outlives it.

#include "Offload/MovedThings.h"

#include <QCoroTask>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class QDeadlineTimer;

namespace Quillbrook {

struct KitServices;

class MovedThingsFinder : public QObject
{
    Q_OBJECT

public:
    /// A drive that has not answered for as long as `patience` is told as one that does not.
    explicit MovedThingsFinder(const KitServices &kit,
        std::chrono::milliseconds patience = std::chrono::seconds(2), QObject *parent = nullptr);
    /// Waits for whoever still looks, however long a drive takes to answer.
    ~MovedThingsFinder() override;

    /// Looks at all of it anew, below a home folder in raw bytes. First comes what there is, and then what
    /// each of them holds, which may take its drive a while; until then what was measured before stands.
    void look(const std::string &home, const HostCatalogue &host);
    /// In the order of the tables.
    [[nodiscard]] const std::vector<MovedThing> &things() const { return m_things; }
    /// For the end of the program: ends all that runs, and tells whether it has ended in time.
    [[nodiscard]] bool endsWithin(const QDeadlineTimer &patience);

Q_SIGNALS:
    void thingsChanged();

private:
    struct Place;

    QCoro::Task<> follow(std::string home, HostCatalogue host);
    QCoro::Task<> ask(std::shared_ptr<Place> place);
    QCoro::Task<> measure(std::shared_ptr<Place> place);
    void takeLinks(const std::vector<MovedThing> &links);
    void losePatience(const std::shared_ptr<Place> &place);
    void tell();

    const KitServices &m_kit;
    const std::chrono::milliseconds m_patience;
    /// One more for each look.
    quint64 m_looks = 0;
    std::vector<std::shared_ptr<Place>> m_places;
    std::vector<MovedThing> m_things;
    QThreadPool m_pool;
};

} // namespace Quillbrook
