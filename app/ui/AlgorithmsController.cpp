#include "app/ui/AlgorithmsController.h"

#include "app/OrvexModel.h"

AlgorithmsController::AlgorithmsController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
