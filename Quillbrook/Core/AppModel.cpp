#include "Core/AppModel.h"

namespace Quillbrook {

AppModel::AppModel(const AppServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
}

AppModel::~AppModel() = default;

} // namespace Quillbrook
