// Recording file cost for one hour of 21 channels at 250 Hz (wall time, page cache warm):
// - BM_WriteHourEdf: the recorder (EDFWriter) fed blocks of 10 samples, as the engine does;
// - BM_PlainWriteHour: write() of the same number of bytes in record-sized chunks, the floor;
// - BM_ReadHourEdf: every sample of every channel read into floats by the codec reader.
// The file is kept at ORVEX_BENCH_EDF (default /tmp/orvex-bench-hour.edf) for bench/run's
// MNE and playback figures; bench/run deletes it.
#include "formats/EDFWriter.h"
#include "formats/EdfFileReader.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr int Channels = 21;
constexpr int Rate = 250;
constexpr int Seconds = 3600;
constexpr int Block = 10;

QString hourPath()
{
    const char* path = std::getenv("ORVEX_BENCH_EDF");
    return QString::fromLocal8Bit(path && *path ? path : "/tmp/orvex-bench-hour.edf");
}

QList<QString> labels()
{
    QList<QString> names;
    for (int c = 0; c < Channels; ++c)
        names.append(QStringLiteral("E%1").arg(c + 1));
    return names;
}

// One second of plausible EEG per channel, channel-major, repeated for the whole hour.
const std::vector<float>& secondOfSignal()
{
    static const std::vector<float> data = [] {
        std::vector<float> d(size_t(Channels) * Rate);
        for (int c = 0; c < Channels; ++c)
            for (int i = 0; i < Rate; ++i)
                d[size_t(c) * Rate + i] = float(40.0 * std::sin(2 * M_PI * (8.0 + c) * i / Rate) + 5.0 * c);
        return d;
    }();
    return data;
}

bool writeHour(const QString& path)
{
    EDFWriter writer(path, labels(), Rate, { { "HP", 2.0f }, { "LP", 40.0f } }, QList<double>(Channels, 1000.0));
    if (!writer.isFileOpen())
        return false;
    const std::vector<float>& second = secondOfSignal();
    std::vector<float> block(size_t(Channels) * Block);
    for (int s = 0; s < Seconds; ++s) {
        for (int first = 0; first < Rate; first += Block) {
            for (int c = 0; c < Channels; ++c)
                std::copy_n(second.begin() + c * Rate + first, Block, block.begin() + c * Block);
            writer.writeData(Block, block.data());
        }
    }
    return writer.close();
}

void BM_WriteHourEdf(benchmark::State& state)
{
    const QString path = hourPath();
    for (auto _ : state) {
        if (!writeHour(path)) {
            state.SkipWithError("cannot write the file");
            return;
        }
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
    state.counters["MB"] = double(QFileInfo(path).size()) / 1e6;
}

void BM_PlainWriteHour(benchmark::State& state)
{
    const QString source = hourPath();
    if (!QFileInfo::exists(source) && !writeHour(source)) {
        state.SkipWithError("cannot write the file");
        return;
    }
    const qint64 total = QFileInfo(source).size();
    const std::vector<char> record(size_t(Channels) * Rate * 2 + 1024, 'x');
    const QByteArray path = (source + QStringLiteral(".plain")).toLocal8Bit();
    for (auto _ : state) {
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        qint64 written = 0;
        while (fd >= 0 && written < total) {
            const ssize_t n = ::write(fd, record.data(), size_t(std::min<qint64>(total - written, qint64(record.size()))));
            if (n <= 0)
                break;
            written += n;
        }
        if (fd >= 0)
            ::close(fd);
        if (written != total) {
            state.SkipWithError("plain write failed");
            break;
        }
    }
    ::unlink(path.constData());
    state.SetBytesProcessed(state.iterations() * total);
}

void BM_ReadHourEdf(benchmark::State& state)
{
    const QString path = hourPath();
    if (!QFileInfo::exists(path) && !writeHour(path)) {
        state.SkipWithError("cannot write the file");
        return;
    }
    std::vector<std::vector<float>> out(Channels, std::vector<float>(size_t(Seconds) * Rate));
    for (auto _ : state) {
        EdfFileReader reader;
        if (!reader.open(path)) {
            state.SkipWithError("cannot open the file");
            return;
        }
        const QList<int> signalIndexes = reader.dataSignals();
        for (int c = 0; c < signalIndexes.size() && c < Channels; ++c)
            benchmark::DoNotOptimize(reader.readSamples(signalIndexes[c], 0, qint64(out[c].size()), out[c].data()));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

} // namespace

BENCHMARK(BM_WriteHourEdf)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_PlainWriteHour)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_ReadHourEdf)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

BENCHMARK_MAIN();
