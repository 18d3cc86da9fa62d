#pragma once

#include <QObject>

class OrvexModel;

// The feedback screens: which one is shown, shared with clients through GameManage.
class FeedbackController : public QObject
{
    Q_OBJECT
public:
    explicit FeedbackController(OrvexModel* model, QObject* parent = nullptr);

private:
    OrvexModel* m_model;
};
