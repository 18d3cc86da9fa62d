#include "settings/AbstractMetaDescription.h"

AbstractMetaDescription::AbstractMetaDescription(QObject* parent)
    : QObject(parent)
{
}

AbstractMetaDescription::~AbstractMetaDescription() = default;
