#include "Screens/Warden/FreeNowState.h"

#include "Core/AppModel.h"
#include "Scan/Format.h"

namespace Quillbrook {

FreeNowState::FreeNowState(AppModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_earlier(model)
{
    connect(&m_model.reclaims(), &ReclaimDriver::freeNowOfferChanged, this, [this] {
        // Another move is another question.
        m_earlier.hideRows();
        Q_EMIT changed();
    });
}

bool FreeNowState::asked() const
{
    return m_model.reclaims().freeNowOffer().has_value();
}

QString FreeNowState::title() const
{
    return asked() ? tr("Moved %1 to the Trash. Free the space now?")
                         .arg(Format::bytes(*m_model.reclaims().freeNowOffer()))
                   : QString();
}

void FreeNowState::free()
{
    if (!asked())
        return;
    m_model.reclaims().clearFreeNowOffer();
    m_model.reclaims().finishRemoving();
}

void FreeNowState::keep()
{
    m_model.reclaims().clearFreeNowOffer();
}

} // namespace Quillbrook
