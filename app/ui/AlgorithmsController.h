#pragma once

#include <QObject>

class OrvexModel;

// The custom algorithms: add, edit, remove, live values, control visibility.
class AlgorithmsController : public QObject
{
    Q_OBJECT
public:
    explicit AlgorithmsController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
