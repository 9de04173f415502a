#include "Screens/Window/UpdateLineState.h"

#include "Core/AppModel.h"
#include "Platform/LinkOpener.h"
#include "Screens/SingleLine.h"

namespace Quillbrook {

UpdateLineState::UpdateLineState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    connect(&m_model.updates(), &UpdateDriver::updateChanged, this, &UpdateLineState::changed);
}

void UpdateLineState::open()
{
    if (const auto &update = m_model.updates().update())
        m_model.services().links.open(update->url);
}

QString UpdateLineState::text() const
{
    const auto &update = m_model.updates().update();
    return update ? tr("Quillbrook %1 is out").arg(singleLine(update->version)) : QString();
}

} // namespace Quillbrook
