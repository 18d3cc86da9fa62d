#include "formats/EdfFileHeader.h"

#include "formats/EdfFieldText.h"

double EdfFileHeader::recordDurationSeconds() const
{
    return static_cast<double>(recordDurationTicks) / EdfFieldText::TicksPerSecond;
}

QString EdfFileHeader::formatDate(const QDate& date)
{
    static const char* const months[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                         "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
    if (!date.isValid() || date.year() < 0 || date.year() > 9999)
        return QStringLiteral("X");
    return QStringLiteral("%1-%2-%3")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(QLatin1String(months[date.month() - 1]))
        .arg(date.year(), 4, 10, QLatin1Char('0'));
}

QString EdfFileHeader::subfield(const QString& text)
{
    QString ascii = EdfFieldText::toAscii(text.trimmed());
    ascii.replace(QLatin1Char(' '), QLatin1Char('_'));
    return ascii.isEmpty() ? QStringLiteral("X") : ascii;
}

QString EdfFileHeader::formatPatientField(const QString& code, QChar sex, const QDate& birthDate,
                                          const QString& name, const QString& more)
{
    const QChar upper = sex.toUpper();
    const QString sexText = (upper == QLatin1Char('M') || upper == QLatin1Char('F')) ? QString(upper)
                                                                                     : QStringLiteral("X");
    QString field = QStringList{subfield(code), sexText, formatDate(birthDate), subfield(name)}.join(' ');
    if (!more.trimmed().isEmpty())
        field += QLatin1Char(' ') + EdfFieldText::toAscii(more.trimmed());
    return field;
}

QString EdfFileHeader::formatRecordingField(const QDate& startDate, const QString& adminCode,
                                            const QString& technician, const QString& equipment,
                                            const QString& more)
{
    QString field = QStringList{QStringLiteral("Startdate"), formatDate(startDate), subfield(adminCode),
                                subfield(technician), subfield(equipment)}
                        .join(' ');
    if (!more.trimmed().isEmpty())
        field += QLatin1Char(' ') + EdfFieldText::toAscii(more.trimmed());
    return field;
}
