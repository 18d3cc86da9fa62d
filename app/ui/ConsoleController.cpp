#include "app/ui/ConsoleController.h"

#include "app/OrvexModel.h"

ConsoleController::ConsoleController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
