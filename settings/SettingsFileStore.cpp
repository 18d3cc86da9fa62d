#include "settings/SettingsFileStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSaveFile>

SettingsFileStore::SettingsFileStore(const QString& path)
    : m_path(path)
{
}

SettingsFileStore::ReadResult SettingsFileStore::read(QJsonObject& object, QString& problem) const
{
    const QFileInfo info(m_path);
    if (!info.exists())
        return ReadResult::Missing;
    if (info.size() > MaxFileSize) {
        problem = QStringLiteral("larger than %1 bytes").arg(MaxFileSize);
        return ReadResult::Damaged;
    }
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("cannot be read: %1").arg(file.errorString());
        return ReadResult::Damaged;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError) {
        problem = QStringLiteral("not JSON: %1 at offset %2").arg(error.errorString()).arg(error.offset);
        return ReadResult::Damaged;
    }
    if (!document.isObject()) {
        problem = QStringLiteral("not a JSON object");
        return ReadResult::Damaged;
    }
    object = document.object();
    return ReadResult::Loaded;
}

bool SettingsFileStore::write(const QJsonObject& object, QString& problem) const
{
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QDir().mkpath(folder)) {
        problem = QStringLiteral("cannot create the folder %1").arg(folder);
        return false;
    }
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly)) {
        problem = QStringLiteral("cannot be written: %1").arg(file.errorString());
        return false;
    }
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Indented);
    if (file.write(bytes) != bytes.size()) {
        problem = QStringLiteral("cannot be written: %1").arg(file.errorString());
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        problem = QStringLiteral("cannot be written: %1").arg(file.errorString());
        return false;
    }
    return true;
}

bool SettingsFileStore::moveAside(QString& problem) const
{
    const QString aside = getAsidePath();
    if (QFile::exists(aside) && !QFile::remove(aside)) {
        problem = QStringLiteral("cannot replace %1").arg(aside);
        return false;
    }
    QFile file(m_path);
    if (!file.rename(aside)) {
        problem = QStringLiteral("cannot rename to %1: %2").arg(aside, file.errorString());
        return false;
    }
    return true;
}
