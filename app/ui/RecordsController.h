#pragma once

#include "app/ui/RecordListModel.h"
#include "app/ui/RecordPlayerController.h"
#include "app/ui/RecordReviewController.h"

#include <QObject>

class OrvexModel;

// The records folder as a list, playing and reviewing a record.
class RecordsController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(RecordListModel* records READ records CONSTANT)
    Q_PROPERTY(RecordPlayerController* player READ player CONSTANT)
    Q_PROPERTY(RecordReviewController* review READ review CONSTANT)
    Q_PROPERTY(QString folder READ folder NOTIFY folderChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    explicit RecordsController(OrvexModel* model, QObject* parent = nullptr);

    RecordListModel* records() { return &m_records; }
    RecordPlayerController* player() { return &m_player; }
    RecordReviewController* review() { return &m_review; }
    QString folder() const;
    QString message() const { return m_message; }

    // Reads the folder again.
    Q_INVOKABLE void refresh();
    // Deletes every file of the record of that row; the one being written is refused.
    Q_INVOKABLE bool removeRecord(int row);
    Q_INVOKABLE bool openFolder();
    Q_INVOKABLE bool play(int row);
    Q_INVOKABLE bool openReview(int row);

Q_SIGNALS:
    void folderChanged();
    void messageChanged();

private:
    void setMessage(const QString& message);

    OrvexModel* m_model;
    RecordListModel m_records;
    RecordPlayerController m_player;
    RecordReviewController m_review;
    QString m_writing; // the EDF file of the running recording
    QString m_message;
};
