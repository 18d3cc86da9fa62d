#include "app/ui/ApiController.h"

#include "app/OrvexModel.h"

ApiController::ApiController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
