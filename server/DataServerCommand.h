#pragma once

#include "server/HTWSCommand.h"

class DataServerContext;

// Base of every command of the data server: knows the application it serves.
class DataServerCommand : public HTWSCommand
{
    Q_OBJECT
public:
    DataServerCommand(DataServerContext* context, QObject* parent = nullptr,
                      HTWSCommandCategory* category = nullptr);

protected:
    DataServerContext* context() const { return m_context; }

private:
    DataServerContext* m_context;
};
