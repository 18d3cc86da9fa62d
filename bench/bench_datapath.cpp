// Throughput of the engine's per-block path: montage, the default filter chain, histories,
// grab buffers, signal quality and signals, for a 21-channel headset at 250 Hz; and the same
// with spectra (4 s window, 0.1 s step) and both indices.
//
// The spectrum history keeps the spectra of the last storage time (10 s) by the clock. Run
// about a thousand times faster than real time, it keeps that many times more of them than in
// use and never frees one during a measurement, so the metering case also pays for fresh memory
// pages (about 17 KB of new spectra per block, a few page faults) that real-time use recycles.
#include "core/CortexCore.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {
constexpr int Channels = 21;
constexpr float Rate = 250.0f;

QList<QList<float>> makeBlock(int samples, int offset)
{
    QList<QList<float>> block(Channels);
    for (int c = 0; c < Channels; ++c) {
        for (int k = 0; k < samples; ++k)
            block[c].append(float(30.0 * std::sin(0.25 * (offset + k) + c) + 5.0 * std::sin(2.5 * (offset + k))));
    }
    return block;
}

void run(benchmark::State& state, bool metering)
{
    const int blockSamples = int(state.range(0));
    CortexCore engine;
    engine.setFilters(2, 40, 50, 0);
    engine.setHPFOrder(4, false);
    engine.setLPFOrder(4, false);
    engine.createDevice(Channels, Rate);
    engine.enableDataGrabMode(true);
    if (metering) { // spectra with both indices, on the application's default channels
        engine.startSpectrumCalculation(4.0f, 0.1f, 10.0f);
        engine.startMetaIndexMetering(CortexCore::Meditation, QStringLiteral("O1,O2"), 0, 100, 0, 100, 0, 100,
                                      1000, 1000, 10, 16, true);
        engine.startMetaIndexMetering(CortexCore::Concentration, QStringLiteral("Fp1,Fp2"), 0, 100, 0, 100, 0,
                                      100, 1000, 1000, 10, 16, true);
    }

    // Distinct blocks so the filters see a changing signal.
    QList<QList<QList<float>>> blocks;
    for (int i = 0; i < 50; ++i)
        blocks.append(makeBlock(blockSamples, i * blockSamples));

    qsizetype next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(engine.addDataChannelWise(blocks[next]));
        next = (next + 1) % blocks.size();
    }
    const double channelSamples = double(state.iterations()) * Channels * blockSamples;
    state.SetItemsProcessed(int64_t(channelSamples));
    state.counters["realtime_x"] = benchmark::Counter(channelSamples / (Channels * Rate), benchmark::Counter::kIsRate);
}
void BM_AddDataChannelWise(benchmark::State& state) { run(state, false); }
void BM_AddDataChannelWiseWithMetering(benchmark::State& state) { run(state, true); }
BENCHMARK(BM_AddDataChannelWise)->Arg(10)->Arg(25)->Arg(125);
BENCHMARK(BM_AddDataChannelWiseWithMetering)->Arg(10);
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
