// Spectrum analyzer cost: our radix-2 transform on 1024 points (items_per_second = transforms
// per second; bench/run sets it beside numpy.fft.fft) and one whole spectrum of
// the engine's usual window (250 Hz, 4 s: 1000 samples padded to 1024, 10 % taper, five
// rhythms; items_per_second = spectra per second).
#include "dsp/SpectrumAnalyzer.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using Complex = SpectrumAnalyzer::Complex;

void BM_Fft1024(benchmark::State& state)
{
    constexpr int n = 1024;
    std::mt19937 random(7);
    std::normal_distribution<float> value(0, 1);
    std::vector<Complex> in(n), out(n);
    for (Complex& point : in)
        point = Complex(value(random), value(random));
    SpectrumAnalyzer::fft(n, in.data(), out.data()); // builds the size's table once
    for (auto _ : state) {
        SpectrumAnalyzer::fft(n, in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_CalculateSpectrum(benchmark::State& state)
{
    constexpr float rate = 250;
    SpectrumAnalyzer analyzer;
    analyzer.addRhythm("alpha", 8, 14);
    analyzer.addRhythm("beta", 14, 35);
    analyzer.addRhythm("theta", 4, 8);
    analyzer.addRhythm("delta", 0.5f, 4);
    analyzer.addRhythm("gamma", 35, 50);
    analyzer.setDataFrequency(rate);
    analyzer.setSmoothingWindowPercent(10);
    analyzer.setWindowSize(4);
    analyzer.setWindowStep(0.5f);
    std::mt19937 random(7);
    std::normal_distribution<float> noise(0, 5);
    QList<float> block(analyzer.getWindowSamples());
    for (int i = 0; i < block.size(); ++i)
        block[i] = float(30 * std::sin(2 * M_PI * 10 * i / rate) + 20) + noise(random);
    for (auto _ : state) {
        QList<float> spectrum = analyzer.calculateSpectrum(block);
        benchmark::DoNotOptimize(spectrum.data());
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(BM_Fft1024);
BENCHMARK(BM_CalculateSpectrum);

BENCHMARK_MAIN();
