#include "server/HTWSCommandCategory.h"

HTWSCommandCategory::HTWSCommandCategory(QObject* parent)
    : QObject(parent)
{
}

HTWSCommandCategory::HTWSCommandCategory(QString name, QString description,
                                         QList<HTWSCommandCategory*> subcategories, QObject* parent)
    : QObject(parent)
    , m_name(std::move(name))
    , m_description(std::move(description))
    , m_subcategories(std::move(subcategories))
{
}
