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

bool CsvStreamWriter::open(const QString& path, const QStringList& channelNames, float samplingRate,
                           QString& error)
{
    QStringList headers { QStringLiteral("t") };
    headers.append(channelNames);
    m_table->setHeaders(headers);
    m_table->setCellFormat(0, NumericTableCSV::CellNumberFormat_Double_3precision);
    m_samplingRate = samplingRate;
    m_rows = 0;
    if (!m_table->startContinuousRecord(path, true)) {
        error = QStringLiteral("cannot write %1: %2").arg(QFileInfo(path).absoluteFilePath(), m_table->errorString());
        return false;
    }
    m_table->flush();
    m_sinceFlush.start();
    return true;
}

bool CsvStreamWriter::write(const QList<QList<float>>& block)
{
    if (!m_table->isRecording() || block.isEmpty())
        return false;
    const int columns = m_table->headerCount();
    const qsizetype samples = block.first().size();
    bool ok = true;
    // One reused row: the table never grows, however long the session runs.
    for (qsizetype k = 0; k < samples; ++k) {
        m_table->setValue(0, 0, double(m_rows) / m_samplingRate);
        for (int c = 1; c < columns && c - 1 < block.size(); ++c)
            m_table->setValue(0, c, double(block[c - 1].value(k)));
        ok = m_table->writeLastLine() && ok;
        ++m_rows;
    }
    if (m_sinceFlush.elapsed() >= FlushIntervalMs) {
        m_table->flush();
        m_sinceFlush.restart();
    }
    return ok;
}

void CsvStreamWriter::close()
{
    if (m_table->isRecording())
        m_table->stopWriting();
}
