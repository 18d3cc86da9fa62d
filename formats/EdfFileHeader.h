#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>

// The fixed 256-byte part of an EDF/BDF header, as plain values.
class EdfFileHeader
{
public:
    bool bdf = false;
    QByteArray version;          // as read; the writer derives it from `bdf`
    QString patient;             // EDF+: "code sex birthdate name [more]"
    QString recording;           // EDF+: "Startdate dd-MMM-yyyy admincode technician equipment"
    QDateTime startDateTime;     // whole seconds in the header; the writer puts the
                                 // milliseconds into the first record's time-keeping TAL
    int headerBytes = 0;
    QString reserved;            // "EDF+C" / "BDF+C" / blank / "24BIT" ...
    qint64 recordCount = -1;     // -1 while a file is being written
    qint64 recordDurationTicks = 10000000; // 100 ns ticks: 1 s
    int signalCount = 0;

    double recordDurationSeconds() const;

    // "02-AUG-1951" (English month in capitals); "X" for an invalid date.
    static QString formatDate(const QDate& date);
    // One subfield: ASCII, blanks as "_", "X" when empty.
    static QString subfield(const QString& text);
    // `sex` 'M' or 'F', anything else unknown ("X"); `more` is appended as it is (ASCII).
    static QString formatPatientField(const QString& code, QChar sex, const QDate& birthDate,
                                      const QString& name, const QString& more = QString());
    // All unknown gives "Startdate X X X X".
    static QString formatRecordingField(const QDate& startDate, const QString& adminCode,
                                        const QString& technician, const QString& equipment,
                                        const QString& more = QString());
};
