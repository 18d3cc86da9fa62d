#include "app/ui/RecordsController.h"

#include "app/OrvexModel.h"
#include "app/ui/RecordFolder.h"
#include "core/CortexCore.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

RecordsController::RecordsController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_player(model->engine(), model->virtualDevicesSettings())
    , m_review()
{
    CortexCore* engine = model->engine();
    connect(engine, &CortexCore::recordStarted, this, [this](const QString& path) {
        m_writing = QFileInfo(path).absoluteFilePath();
        refresh();
    });
    connect(engine, &CortexCore::recordStopped, this, [this] {
        m_writing.clear();
        refresh();
    });
    connect(model->settings(), &OrvexSettings::DataFolderChanged, this, [this] {
        Q_EMIT folderChanged();
        refresh();
    });
    refresh();
}

QString RecordsController::folder() const
{
    return QDir::toNativeSeparators(m_model->getRecordsFolder());
}

void RecordsController::refresh()
{
    m_records.setRecords(RecordFolder::scan(m_model->getRecordsFolder()));
}

bool RecordsController::removeRecord(int row)
{
    const RecordEntry record = m_records.recordAt(row);
    if (record.path.isEmpty())
        return false;
    if (record.path == m_writing) {
        setMessage(QStringLiteral("%1 is being recorded: stop the recording first").arg(record.name));
        return false;
    }
    if (m_player.file() == record.path)
        m_player.stop();
    if (m_review.path() == record.path)
        m_review.close();
    QString error;
    const bool removed = RecordFolder::remove(record, error);
    setMessage(removed ? QStringLiteral("Deleted %1").arg(record.name) : error);
    refresh();
    return removed;
}

bool RecordsController::openFolder()
{
    const QString path = m_model->getRecordsFolder();
    QDir().mkpath(path);
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return true;
    setMessage(QStringLiteral("No file manager opened ") + path);
    return false;
}

bool RecordsController::play(int row)
{
    const RecordEntry record = m_records.recordAt(row);
    return !record.path.isEmpty() && m_player.play(record.path);
}

bool RecordsController::openReview(int row)
{
    const RecordEntry record = m_records.recordAt(row);
    return !record.path.isEmpty() && m_review.openFile(record.path);
}

void RecordsController::setMessage(const QString& message)
{
    if (message == m_message)
        return;
    m_message = message;
    if (!message.isEmpty())
        GlobalConsole::writeLine(QStringLiteral("Records: ") + message);
    Q_EMIT messageChanged();
}
