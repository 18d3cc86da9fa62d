#pragma once

#include <QObject>

class OrvexModel;

// The command interface: state, ports, key, connected clients and last requests.
class ApiController : public QObject
{
    Q_OBJECT
public:
    explicit ApiController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
