#include "formats/EDFDataProvider.h"

#include "dsp/FIRfilter.h"
#include "dsp/NotchFilter.h"
#include "formats/EdfFileWriter.h"
#include "services/GlobalConsoleWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <memory>
#include <vector>

namespace {

// The chain run over one signal of the working copy: high-pass, low-pass, notch, gain.
class SignalChain
{
public:
    SignalChain(float sampleRate, double highPass, double lowPass, double notch, double gain)
        : m_gain(float(gain))
    {
        if (highPass > 0.0)
            m_stages.emplace_back(new FIRfilter(AbstractFilter::HighPass, AbstractFilter::Hamming,
                                                EDFDataProvider::FilterOrder, sampleRate, float(highPass)));
        if (lowPass > 0.0)
            m_stages.emplace_back(new FIRfilter(AbstractFilter::LowPass, AbstractFilter::Hamming,
                                                EDFDataProvider::FilterOrder, sampleRate, float(lowPass)));
        if (notch > 0.0)
            m_stages.emplace_back(new NotchFilter(sampleRate, float(notch), EDFDataProvider::NotchBandwidth));
    }

    // In place on microvolt samples.
    void run(float* data, int count)
    {
        for (auto& stage : m_stages)
            stage->Process(data, count);
        if (m_gain != 1.0f)
            for (int i = 0; i < count; ++i)
                data[i] *= m_gain;
    }

private:
    std::vector<std::unique_ptr<AbstractFilter>> m_stages;
    float m_gain;
};

} // namespace

EDFDataProvider::EDFDataProvider(const QString& path, QObject* parent)
    : GeneralDataProvider(parent), m_reader(new EDFReader(path, this)), m_path(path)
{
    m_valid = m_reader->open();
    if (!m_valid)
    {
        kxDebug() << "INVALID FILE" << path;
        m_reader->close();
        m_reader->deleteLater();
        m_reader = nullptr;
    }
}

EDFDataProvider::~EDFDataProvider()
{
    dropWorkingCopy();
}

int EDFDataProvider::getChannelCount()
{
    return m_reader ? m_reader->getChannelCount() : 0;
}

QList<QString> EDFDataProvider::getChannelNames()
{
    return m_reader ? m_reader->getChannelNames() : QList<QString>();
}

QList<QString> EDFDataProvider::getChannelTypes()
{
    kxDebug() << "EDFDataReader: getChannelTypes() NOT IMPLEMENTED";
    return {};
}

int EDFDataProvider::getDurationSamples()
{
    return m_reader ? int(m_reader->lengthSamples()) : 0;
}

float EDFDataProvider::getDurationSeconds()
{
    return m_reader ? float(m_reader->getSeconds()) : 0.0f;
}

float EDFDataProvider::getSamplingRate()
{
    return m_reader ? m_reader->samplingRate() : 0.0f;
}

QList<float> EDFDataProvider::getSingleChannelDataSamples(unsigned channel, unsigned from, int to)
{
    if (!m_reader)
        return {};
    EDFReader* source = isFiltered() && m_filtered ? m_filtered : m_reader;
    const qint64 length = source->lengthSamples();
    const qint64 end = (to < 0 || to > length) ? length : to;
    if (qint64(from) >= end)
        return {};
    return source->getChannelDataFloat(channel, from, unsigned(end - from));
}

QMap<double, QString> EDFDataProvider::getMarkers()
{
    QMap<double, QString> markers;
    if (!m_reader)
        return markers;
    QList<edf_annotation_struct> list;
    m_reader->getAnnotationList(list);
    for (const edf_annotation_struct& a : list)
        markers.insert(double(a.onset) / 10000000.0, QString::fromUtf8(a.annotation).trimmed());
    return markers;
}

QMap<QString, float> EDFDataProvider::getPrefilters() const
{
    return m_reader ? m_reader->getFilters() : QMap<QString, float>();
}

bool EDFDataProvider::isFiltered() const
{
    return m_highPass > 0.0 || m_lowPass > 0.0 || m_notch > 0.0 || m_gain != 1.0;
}

QString EDFDataProvider::workingCopyPath(const QString& path)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString("edf") : info.suffix();
    return info.dir().filePath(info.completeBaseName() + ".temp." + suffix);
}

bool EDFDataProvider::applyFilters(double highPass, double lowPass, double notch, double gain)
{
    if (!m_reader)
        return false;
    dropWorkingCopy();
    m_highPass = highPass;
    m_lowPass = lowPass;
    m_notch = notch;
    m_gain = gain;
    if (!isFiltered())
        return true;
    const QString target = workingCopyPath(m_path);
    if (!writeWorkingCopy(target))
    {
        QFile::remove(target);
        return false;
    }
    m_filteredPath = target;
    m_filtered = new EDFReader(target, this);
    return m_filtered->open();
}

bool EDFDataProvider::writeWorkingCopy(const QString& target)
{
    EdfFileReader source;
    if (!source.open(m_path))
    {
        kxDebug() << QString("EDFDataProvider: cannot read %1: %2").arg(m_path, source.errorString());
        return false;
    }
    const QList<int> signalIndexes = source.dataSignals();
    QList<EdfSignalHeader> headers;
    for (int s : signalIndexes)
        headers.append(source.signalHeaders()[s]);
    EdfFileHeader identity = source.header();
    identity.startDateTime = identity.startDateTime.addMSecs(source.startOffsetTicks() / 10000);

    EdfFileWriter writer;
    if (!writer.open(target, source.isBdf() ? EdfFileWriter::Format::Bdf : EdfFileWriter::Format::Edf,
                     identity, headers))
        return false;
    for (const EdfAnnotation& a : source.annotations())
        writer.addAnnotation(a.onsetTicks - source.startOffsetTicks(), a.durationTicks, a.text);

    const double recordSeconds = identity.recordDurationSeconds();
    std::vector<std::unique_ptr<SignalChain>> chains;
    std::vector<std::vector<float>> buffers;
    QList<const float*> pointers;
    for (const EdfSignalHeader& h : headers)
    {
        chains.emplace_back(new SignalChain(float(h.samplesPerRecord / recordSeconds), m_highPass, m_lowPass,
                                            m_notch, m_gain));
        buffers.emplace_back(size_t(h.samplesPerRecord));
    }
    for (const std::vector<float>& b : buffers)
        pointers.append(b.data());

    for (qint64 record = 0; record < source.recordCount(); ++record)
    {
        for (int k = 0; k < headers.size(); ++k)
        {
            float* data = buffers[size_t(k)].data();
            const int n = headers[k].samplesPerRecord;
            if (source.readSamples(signalIndexes[k], record * n, n, data) != n)
            {
                kxDebug() << QString("EDFDataProvider: read failed in %1").arg(m_path);
                return false;
            }
            // The file holds negated microvolts: filter the true values, store them negated.
            for (int i = 0; i < n; ++i)
                data[i] = -data[i];
            chains[size_t(k)]->run(data, n);
            for (int i = 0; i < n; ++i)
                data[i] = -data[i];
        }
        if (!writer.writeRecord(pointers))
            return false;
    }
    return writer.close();
}

void EDFDataProvider::dropWorkingCopy()
{
    if (m_filtered)
    {
        m_filtered->close();
        delete m_filtered;
        m_filtered = nullptr;
    }
    if (!m_filteredPath.isEmpty())
    {
        QFile::remove(m_filteredPath);
        m_filteredPath.clear();
    }
}

bool EDFDataProvider::saveChanges(const QString& path)
{
    if (!m_reader || !isFiltered() || m_filteredPath.isEmpty() || !QFile::exists(m_filteredPath))
        return false;
    m_reader->close();
    m_valid = false;
    if (m_filtered)
    {
        m_filtered->close();
        delete m_filtered;
        m_filtered = nullptr;
    }
    QString target = path;
    if (target.isEmpty())
    {
        if (!QFile::remove(m_path))
        {
            kxDebug() << QString("EDFDataProvider: cannot remove %1").arg(m_path);
            return false;
        }
        target = m_path;
    }
    if (!QFile::rename(m_filteredPath, target))
    {
        kxDebug() << QString("EDFDataProvider: cannot rename %1 to %2").arg(m_filteredPath, target);
        return false;
    }
    m_filteredPath.clear();
    m_path = target;
    m_highPass = m_lowPass = m_notch = 0.0;
    m_gain = 0.0;
    m_reader->setPath(target);
    m_valid = m_reader->open();
    return true;
}

bool EDFDataProvider::closeFile()
{
    if (!m_reader || !m_reader->close())
        return false;
    m_valid = false;
    return true;
}

bool EDFDataProvider::reopenFile()
{
    if (!m_reader)
        return false;
    m_valid = m_reader->open();
    return m_valid;
}
