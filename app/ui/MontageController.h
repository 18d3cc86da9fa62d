#pragma once

#include <QObject>

class OrvexModel;

// The current montage's channels, edited in place, and montage files.
class MontageController : public QObject
{
    Q_OBJECT
public:
    explicit MontageController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
