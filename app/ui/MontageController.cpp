#include "app/ui/MontageController.h"

#include "app/OrvexModel.h"

MontageController::MontageController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
