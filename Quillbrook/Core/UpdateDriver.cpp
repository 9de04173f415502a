#include "Core/UpdateDriver.h"

#include "Platform/AppServices.h"
#include "Platform/Clock.h"
#include "Platform/UserDefaults.h"

#include <QCoroFuture>
#include <QPointer>

#include <utility>

namespace Quillbrook {

using namespace Qt::StringLiterals;

namespace {

const auto updateCheckedAtKey = u"Quillbrook.updateCheckedAt"_s;
constexpr qint64 millisecondsBetweenChecks = qint64{ 86'400 } * 1000;

} // namespace

UpdateDriver::UpdateDriver(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
}

// An update that is shown is asked for anew, so that the notice does not outlive what it tells of.
void UpdateDriver::checkForUpdate()
{
    const auto checkedAt = m_services.kit.defaults.date(updateCheckedAtKey);
    if (checkedAt && checkedAt->msecsTo(m_services.kit.clock.now()) < millisecondsBetweenChecks && !m_update)
        return;
    ask();
}

// A question that failed counts as well: it is the day's one question, and clears a notice.
QCoro::Task<> UpdateDriver::ask()
{
    const QPointer self(this);
    const auto version = m_services.version.isEmpty() ? u"0"_s : m_services.version;
    const auto asking = UpdateCheck::check(m_services.kit.http, version, m_services.updateFeed);
    const auto found = co_await asking;
    if (!self)
        co_return;
    m_services.kit.defaults.setDate(updateCheckedAtKey, m_services.kit.clock.now());
    if (std::exchange(m_update, found) != found)
        Q_EMIT updateChanged();
}

} // namespace Quillbrook
