#include "app/ui/FeedbackController.h"

#include "app/OrvexModel.h"

FeedbackController::FeedbackController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
}
