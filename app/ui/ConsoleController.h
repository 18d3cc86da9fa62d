#pragma once

#include <QObject>

class OrvexModel;

// The console's items, filtered, its running averages and the log file.
class ConsoleController : public QObject
{
    Q_OBJECT
public:
    explicit ConsoleController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
