#include "server/DataServerCommand.h"

DataServerCommand::DataServerCommand(DataServerContext* context, QObject* parent, HTWSCommandCategory* category)
    : HTWSCommand(parent, category)
    , m_context(context)
{
}
