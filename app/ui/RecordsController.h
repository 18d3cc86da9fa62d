#pragma once

#include <QObject>

class OrvexModel;

// The records folder as a list, playing and reviewing a record.
class RecordsController : public QObject
{
    Q_OBJECT
public:
    explicit RecordsController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
