#pragma once

#include <QJsonObject>
#include <QString>

// One settings file: a JSON object read whole and written atomically (temporary file, then
// rename), so a crash leaves either the old or the new file, never half of one.
class SettingsFileStore
{
public:
    enum class ReadResult { Missing, Loaded, Damaged };

    // Larger files are not settings of ours; they are treated as damaged, not read.
    static constexpr qint64 MaxFileSize = 4 * 1024 * 1024;

    explicit SettingsFileStore(const QString& path);

    QString getPath() const { return m_path; }
    // Where a damaged file is kept: "<name>.json.bad".
    QString getAsidePath() const { return m_path + QStringLiteral(".bad"); }

    ReadResult read(QJsonObject& object, QString& problem) const;
    bool write(const QJsonObject& object, QString& problem) const;
    // Renames the file to the aside path, replacing an older aside file.
    bool moveAside(QString& problem) const;

private:
    QString m_path;
};
