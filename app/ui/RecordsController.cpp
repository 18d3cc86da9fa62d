#include "app/ui/RecordsController.h"

#include "app/OrvexModel.h"

RecordsController::RecordsController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
