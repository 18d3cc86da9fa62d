// CPU cost of one trace picture: 21 channels x 10 s x 1000 Hz decimated into 1920 pixel columns
// (min/max per column) and turned into line vertices, as TracePlot does once per frame. The
// figure to read is the time per iteration, i.e. per frame (goal: <= 1 ms). The counter
// allocations_per_frame shows that a steady frame allocates nothing.
#include "app/ui/LinePicture.h"
#include "app/ui/LinesNode.h"
#include "app/ui/TraceBuffer.h"
#include "app/ui/TraceGeometry.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>
#include <random>

namespace {
std::atomic<long> allocations { 0 };
}

void* operator new(std::size_t size)
{
    ++allocations;
    void* p = std::malloc(size ? size : 1);
    if (!p)
        std::abort();
    return p;
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}

namespace {

constexpr int Channels = 21;
constexpr double Rate = 1000;
constexpr double Seconds = 10;
constexpr int Columns = 1920;
constexpr int Block = 20; // samples per channel per device block

enum class Fill { Wrapped, Gaps, Partial };

// A buffer holding 30 s of a few rhythms plus noise (the 20 s ring has wrapped), or NaN runs
// in 10 % of it, or only the first 3 s.
TraceBuffer& buffer(Fill fill)
{
    static TraceBuffer traces;
    QStringList names;
    for (int c = 0; c < Channels; ++c)
        names << QStringLiteral("C%1").arg(c);
    traces.reset(names, Rate, 2 * Seconds);
    std::mt19937 random(3);
    std::normal_distribution<float> noise(0, 5);
    const int total = int(Rate * (fill == Fill::Partial ? 3 : 3 * Seconds));
    QList<QList<float>> block(Channels, QList<float>(Block));
    for (int i = 0; i < total; i += Block) {
        for (int c = 0; c < Channels; ++c) {
            for (int j = 0; j < Block; ++j) {
                const double t = (i + j) / Rate;
                const bool gap = fill == Fill::Gaps && ((i + j) / 50) % 10 == 3;
                block[c][j] = gap ? NAN : float(40 * std::sin(2 * M_PI * (8 + c % 5) * t)) + noise(random);
            }
        }
        traces.append(block);
    }
    return traces;
}

// Frames scroll by a device block each, as the live screen does.
qint64 frameEnd(const TraceBuffer& traces, int frame)
{
    return traces.written() - (frame % 50) * Block;
}

void report(benchmark::State& state, long allocationsBefore)
{
    state.SetItemsProcessed(state.iterations() * Channels * qint64(Seconds * Rate));
    state.counters["allocations_per_frame"] = double(allocations - allocationsBefore) / double(state.iterations());
}

void decimate(benchmark::State& state, Fill fill)
{
    const TraceBuffer& traces = buffer(fill);
    TraceGeometry geometry;
    geometry.setLayout(Columns, qint64(Seconds * Rate));
    LinePicture picture;
    picture.setLayout(Channels, geometry.capacity(), QSGGeometry::DrawLines);
    int frame = 0;
    const long before = allocations;
    for (auto _ : state) {
        const qint64 end = frameEnd(traces, frame++);
        for (int c = 0; c < Channels; ++c)
            picture.line(c).count = geometry.fill(traces, c, end, picture.line(c).vertices.data());
        benchmark::DoNotOptimize(picture.line(Channels - 1).vertices.data());
    }
    report(state, before);
}

// The whole per-frame CPU work of the plot: decimation, vertices, and the copy into the scene
// graph's vertex buffers.
void decimateAndUpload(benchmark::State& state)
{
    const TraceBuffer& traces = buffer(Fill::Wrapped);
    TraceGeometry geometry;
    geometry.setLayout(Columns, qint64(Seconds * Rate));
    LinePicture picture;
    picture.setLayout(Channels, geometry.capacity(), QSGGeometry::DrawLines);
    LinesNode node(picture);
    int frame = 0;
    const long before = allocations;
    for (auto _ : state) {
        const qint64 end = frameEnd(traces, frame++);
        for (int c = 0; c < Channels; ++c)
            picture.line(c).count = geometry.fill(traces, c, end, picture.line(c).vertices.data());
        node.update(picture, QRectF(0, 0, Columns, 1000));
    }
    report(state, before);
}

}

BENCHMARK_CAPTURE(decimate, wrapped_ring, Fill::Wrapped)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(decimate, nan_gaps, Fill::Gaps)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(decimate, partially_filled, Fill::Partial)->Unit(benchmark::kMicrosecond);
BENCHMARK(decimateAndUpload)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
