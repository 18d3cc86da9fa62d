#include "app/CsvStreamWriter.h"

#include "formats/NumericTableCSV.h"

#include <QFileInfo>

CsvStreamWriter::CsvStreamWriter()
    : m_table(new NumericTableCSV())
{
}

CsvStreamWriter::~CsvStreamWriter()
{
    close();
    delete m_table;
}

bool CsvStreamWriter::open(const QString& path, const QStringList& columns, QString& error)
{
    QStringList headers { QStringLiteral("t") };
    headers.append(columns);
    m_table->setHeaders(headers);
    // Value 7 writes three decimals (milliseconds); the table's formats act by value, not name.
    m_table->setCellFormat(0, NumericTableCSV::CellNumberFormat_Double_2precision);
    if (!m_table->startContinuousRecord(path, true)) {
        error = QStringLiteral("cannot write %1: %2").arg(QFileInfo(path).absoluteFilePath(), m_table->errorString());
        return false;
    }
    flushNow(true);
    return true;
}

bool CsvStreamWriter::writeBlock(const QList<QList<float>>& block, qint64 firstSample, float samplingRate)
{
    if (!m_table->isRecording() || block.isEmpty())
        return false;
    const int columns = m_table->headerCount();
    const qsizetype samples = block.first().size();
    bool ok = true;
    // One reused row: the table never grows, however long the session runs.
    for (qsizetype k = 0; k < samples; ++k) {
        m_table->setValue(0, 0, double(firstSample + k) / samplingRate);
        for (int c = 1; c < columns && c - 1 < block.size(); ++c)
            m_table->setValue(0, c, double(block[c - 1].value(k)));
        ok = m_table->writeLastLine() && ok;
    }
    flushNow(false);
    return ok;
}

bool CsvStreamWriter::writeRow(double seconds, const QList<double>& values)
{
    if (!m_table->isRecording())
        return false;
    m_table->setValue(0, 0, seconds);
    for (int c = 1; c < m_table->headerCount(); ++c)
        m_table->setValue(0, c, values.value(c - 1));
    const bool ok = m_table->writeLastLine();
    flushNow(false);
    return ok;
}

void CsvStreamWriter::flushNow(bool force)
{
    if (!force && m_sinceFlush.isValid() && m_sinceFlush.elapsed() < FlushIntervalMs)
        return;
    m_table->flush();
    m_sinceFlush.restart();
}

void CsvStreamWriter::close()
{
    if (m_table->isRecording())
        m_table->stopWriting();
}
