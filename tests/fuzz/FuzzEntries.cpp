#include "FuzzEntries.h"

#include "DataGrabberFuzz.h"

#include "dsp/AmplifierChannel.h"
#include "dsp/ChannelSpecification.h"
#include "dsp/Montage.h"
#include "dsp/MontageList.h"
#include "formats/EDFDataProvider.h"
#include "formats/EDFReader.h"
#include "formats/EdfFileReader.h"
#include "formats/NumericTableCSV.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

// A broken property is reported like a crash so that both the fuzzer and the test see it.
void require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "fuzz property broken: %s\n", what);
    std::abort();
}

QString scratchPath(const QString& name)
{
    static QTemporaryDir dir;
    return dir.filePath(name);
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QByteArray bytesOf(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

void walkFileReader(const QString& path)
{
    EdfFileReader reader;
    if (!reader.open(path))
        return;
    const qint64 fileSize = QFile(path).size();
    for (int s = 0; s < reader.signalHeaders().size(); ++s) {
        // Every sample comes from the file, so no signal can hold more samples than bytes.
        require(reader.samplesInSignal(s) <= fileSize, "signal longer than its file");
        const QList<float> all = reader.readSignal(s);
        require(all.size() == reader.samplesInSignal(s), "readSignal size differs from samplesInSignal");
        float window[7];
        const qint64 middle = all.size() / 2;
        require(reader.readSamples(s, middle, 7, window) == std::min<qint64>(7, all.size() - middle),
                "readSamples count at the middle");
        require(reader.readSamples(s, all.size() + 3, 7, window) == 0, "readSamples past the end");
    }
    require(reader.readSamples(-1, 0, 1, static_cast<float*>(nullptr)) == -1, "negative signal accepted");
    require(reader.readSignal(reader.signalHeaders().size()).isEmpty(), "signal beyond the list read");
    for (const EdfAnnotation& annotation : reader.annotations())
        require(annotation.record >= 0 && annotation.record < reader.recordCount(), "annotation record");
}

void walkFacade(const QString& path)
{
    EDFReader reader(path);
    if (!reader.open())
        return;
    EdfFileReader codec;
    require(codec.open(path), "the facade opened what the codec refuses");
    // Whole seconds of records x record duration, computed here without 64-bit products.
    const long double expected = std::floor(static_cast<long double>(codec.recordCount())
                                            * codec.header().recordDurationTicks / 1e7L);
    require(std::fabs(static_cast<long double>(reader.getSeconds()) - expected) <= 1e-9L * (1 + expected),
            "duration in seconds");
    const int channels = reader.getChannelCount();
    require(reader.getChannelNames().size() == channels, "channel names");
    require(reader.getFileMontage() && reader.getFileMontage()->size() == channels, "file montage size");
    reader.infoFull();
    PatientInfo patient;
    reader.getPatientInfo(patient);
    reader.getAnnotations();
    QList<edf_annotation_struct> annotations;
    reader.getAnnotationList(annotations);
    for (const edf_annotation_struct& a : annotations)
        require(a.duration[sizeof a.duration - 1] == '\0' && a.annotation[sizeof a.annotation - 1] == '\0',
                "annotation text not terminated");
    for (int c = 0; c < channels; ++c) {
        const QList<float> values = reader.getChannelDataFloat(unsigned(c), 0, UINT_MAX);
        if (c == 0)
            require(values.size() == qsizetype(reader.lengthSamples()), "channel 0 length");
        reader.getChannelData(unsigned(c), unsigned(values.size() / 3), 5);
    }
    const unsigned count = std::min(16u, reader.lengthSamples());
    std::vector<double> block(size_t(std::max(channels, 1)) * count);
    const int read = reader.getBuffData(reader.lengthSamples() / 2, count, block.data());
    require(read <= int(count), "getBuffData read more than asked");
    require(reader.getChannelBuffData(unsigned(channels), 0, 0, block.data()) == -1, "channel beyond the list");
    reader.close();
    require(reader.getBuffData(0, count, block.data()) == -2, "read after close");
}

void walkProvider(const QString& path)
{
    EDFDataProvider provider(path);
    if (!provider.isValid())
        return;
    provider.getMarkers();
    provider.getDurationSeconds();
    const QList<float> all = provider.getSingleChannelDataSamples(0, 0, -1);
    if (provider.getChannelCount() > 0)
        require(all.size() == provider.getDurationSamples(), "provider sample count");
    require(provider.getSingleChannelDataSamples(0, unsigned(all.size()), -1).isEmpty(), "samples after the end");
}

void checkChannelSpecification(const QString& first, const QString& second, const QStringList& names)
{
    ChannelSpecification selection(first);
    selection.getIndexes();
    selection.update(names, QStringLiteral("fuzz"));
    const auto checkIndexes = [&selection, &names]() {
        const QList<int>& indexes = selection.getIndexes();
        for (int i = 0; i < indexes.size(); ++i) {
            require(indexes[i] >= 0, "negative channel index");
            require(names.isEmpty() || indexes[i] < names.size(), "channel index beyond the names");
            require(indexes.indexOf(indexes[i]) == i, "repeated channel index");
        }
    };
    checkIndexes();
    selection.setText(second, QStringLiteral("fuzz"));
    checkIndexes();
    selection.update({}, QStringLiteral("fuzz"));
    selection.getUnknown();
}

void checkAmplifierChannel(const AmplifierChannel& channel)
{
    for (int column = -1; column <= 9; ++column)
        channel.getTextValue(column);
    channel.getTextFilterView();
    channel.getCurrentIndexLPF();
    channel.getCurrentIndexHPF();
    channel.getCurrentIndexBSF();
    // The JSON form keeps every field the text form carries.
    const AmplifierChannel viaJson(channel.toJson());
    require(viaJson.makeTextView() == channel.makeTextView(), "channel JSON round trip");
    AmplifierChannel edited(&channel);
    edited.setLPF(channel.getLPF());
    edited.setHPF(channel.getHPF());
    edited.setBSF(channel.getBSF());
    require(edited.getLPFValues().size() == edited.getFilterRef().lpfChoices.size(), "LPF menu size");
    edited.getHPFValues();
    edited.getBSFValues();
}

// What load accepts, save must write in a form load accepts again, with the same shape.
void checkTableRoundTrip(NumericTableCSV& table, bool simple)
{
    const QString path = scratchPath(simple ? QStringLiteral("again.csv") : QStringLiteral("again.bin"));
    require(table.save(path, simple), "saving a loaded table failed");
    NumericTableCSV again;
    require(again.load(path), "a saved table does not load");
    require(again.headers() == table.headers(), "headers changed in a round trip");
    require(again.count() == table.count(), "row count changed in a round trip");
    if (!simple) {
        for (int column = 0; column < table.headerCount(); ++column)
            require(again.cellFormat(column) == table.cellFormat(column), "format changed in a round trip");
    }
}

} // namespace

namespace FuzzEntries {

void quietConsole()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

void edf(const uint8_t* data, size_t size)
{
    const QString path = scratchPath(QStringLiteral("input.edf"));
    if (!writeBytes(path, bytesOf(data, size)))
        return;
    walkFileReader(path);
    walkFacade(path);
    walkProvider(path);
    EDFReader::fileInfo(path);
}

void montage(const uint8_t* data, size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    const QString path = scratchPath(QStringLiteral("montage.xml"));
    if (writeBytes(path, bytes)) {
        std::unique_ptr<MontageList> list(MontageList::read(path));
        const bool complete = list->reload();
        const QString written = list->saveAsString();
        if (complete) {
            // A montage that read completely must read back the same from what it writes.
            const QString again = scratchPath(QStringLiteral("again.xml"));
            require(list->save(again), "saving a montage failed");
            MontageList copy;
            MontageList::read(again, &copy);
            const QList<MontageChannel> read = copy.channels();
            const QList<MontageChannel> original = list->channels();
            require(read.size() == original.size(), "montage channel count round trip");
            for (int i = 0; i < read.size(); ++i) {
                const MontageChannel& a = read[i];
                const MontageChannel& b = original[i];
                // Any negative reference means "none" and is written as no G2 at all.
                const bool sameReference = a.group2 == b.group2 || (a.group2 < 0 && b.group2 < 0);
                require(a.name == b.name && a.group1 == b.group1 && sameReference && a.color == b.color
                            && a.filterType == b.filterType,
                        "montage channel round trip");
            }
            require(copy.title() == list->title(), "montage title round trip");
        }
    }

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (!document.isObject())
        return;
    Montage montage;
    montage.fromJson(document.object());
    montage.setCurrentSampleFreq(250.0f);
    montage.getIndexByName(QStringLiteral("Fp1"));
    montage.getECGChannel();
    montage.rebuildMontageChannelList();
    montage.createChannelFilterList();
    montage.makeChannelDataList();
    Montage copy;
    copy.fromJson(montage.toJson());
    require(copy.toJson() == montage.toJson(), "montage JSON round trip");
    AmplifierChannel single(document.object());
    checkAmplifierChannel(single);
}

void channel(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(bytesOf(data, size));
    QStringList lines = text.split(QLatin1Char('\n'));
    const QString first = lines.value(0);
    const QString second = lines.value(1);
    const QStringList names = lines.mid(2);

    const AmplifierChannel parsed(first);
    checkAmplifierChannel(parsed);
    AmplifierChannel reparsed(QString::fromUtf8(parsed.makeTextView()));
    reparsed.makeTextView();
    checkChannelSpecification(first, second, names);

    const QJsonDocument document = QJsonDocument::fromJson(bytesOf(data, size));
    if (document.isObject())
        checkAmplifierChannel(AmplifierChannel(document.object()));
}

void table(const uint8_t* data, size_t size)
{
    const QString path = scratchPath(QStringLiteral("table.csv"));
    if (!writeBytes(path, bytesOf(data, size)))
        return;
    NumericTableCSV table;
    if (!table.load(path))
        return;
    for (int column = -1; column <= table.headerCount(); ++column) {
        table.valuesAt(column, 1, -1);
        table.doubleValuesAt(column);
        table.valueAt(table.count() - 1, column);
    }
    if (table.count() == 0)
        return; // save refuses a table without rows
    checkTableRoundTrip(table, false);
    checkTableRoundTrip(table, true);
}

QStringList targets()
{
    return {QStringLiteral("edf"), QStringLiteral("montage"), QStringLiteral("channel"), QStringLiteral("table"),
            QStringLiteral("datagrabber")};
}

Entry entryFor(const QString& target)
{
    if (target == QLatin1String("edf"))
        return &edf;
    if (target == QLatin1String("montage"))
        return &montage;
    if (target == QLatin1String("channel"))
        return &channel;
    if (target == QLatin1String("table"))
        return &table;
    if (target == QLatin1String("datagrabber"))
        return &datagrabber;
    return nullptr;
}

} // namespace FuzzEntries
