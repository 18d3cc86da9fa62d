// Throughput of the engine's per-channel filter chain at 250 Hz and of each filter alone.
// Items are samples: items_per_second is samples per second.
#include "dsp/ButterworthFilter.h"
#include "dsp/FIRfilter.h"
#include "dsp/NotchFilter.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr float SampleRate = 250;
constexpr int SourceLength = 1 << 20;

// A long deterministic EEG-like source (a few rhythms plus noise); each iteration copies the
// next block from it and filters that block in place, so the values stay realistic.
const std::vector<float>& source()
{
    static const std::vector<float> data = [] {
        std::vector<float> x(SourceLength);
        std::mt19937 random(7);
        std::normal_distribution<float> noise(0, 5);
        for (int i = 0; i < SourceLength; ++i) {
            const double t = i / double(SampleRate);
            x[i] = float(30 * std::sin(2 * M_PI * 10 * t) + 10 * std::sin(2 * M_PI * 50 * t) + 20) + noise(random);
        }
        return x;
    }();
    return data;
}

using Chain = std::vector<std::unique_ptr<AbstractFilter>>;

std::unique_ptr<AbstractFilter> highPass()
{
    return std::make_unique<FIRfilter>(AbstractFilter::HighPass, AbstractFilter::Rectangular, 4, SampleRate, 2);
}
std::unique_ptr<AbstractFilter> lowPass()
{
    return std::make_unique<FIRfilter>(AbstractFilter::LowPass, AbstractFilter::Rectangular, 4, SampleRate, 40);
}
std::unique_ptr<AbstractFilter> notch()
{
    return std::make_unique<NotchFilter>(SampleRate, 50, 2);
}

void run(benchmark::State& state, const Chain& chain)
{
    const int block = int(state.range(0));
    const std::vector<float>& src = source();
    std::vector<float> work(block);
    int position = 0;
    for (auto _ : state) {
        if (position + block > SourceLength)
            position = 0;
        std::memcpy(work.data(), src.data() + position, block * sizeof(float));
        position += block;
        for (const auto& filter : chain)
            filter->Process(work.data(), block);
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * block);
}

void BM_EngineChain(benchmark::State& state)
{
    Chain chain;
    chain.push_back(highPass());
    chain.push_back(lowPass());
    chain.push_back(notch());
    run(state, chain);
}

void BM_FirHighPass(benchmark::State& state)
{
    Chain chain;
    chain.push_back(highPass());
    run(state, chain);
}

void BM_FirLowPass(benchmark::State& state)
{
    Chain chain;
    chain.push_back(lowPass());
    run(state, chain);
}

void BM_Notch(benchmark::State& state)
{
    Chain chain;
    chain.push_back(notch());
    run(state, chain);
}

// The float Butterworth family the engine uses when FIRfilter is switched off.
void BM_ButterworthChain(benchmark::State& state)
{
    Chain chain;
    chain.push_back(std::make_unique<ButterworthFilter>(AbstractFilter::HighPass, 4, SampleRate, 0, 2));
    chain.push_back(std::make_unique<ButterworthFilter>(AbstractFilter::LowPass, 4, SampleRate, 40, 0));
    chain.push_back(notch());
    run(state, chain);
}

} // namespace

// 10 samples: a typical device block; 1,000,000: one long array.
BENCHMARK(BM_EngineChain)->Arg(10)->Arg(1000000);
BENCHMARK(BM_FirHighPass)->Arg(10)->Arg(1000000);
BENCHMARK(BM_FirLowPass)->Arg(10)->Arg(1000000);
BENCHMARK(BM_Notch)->Arg(10)->Arg(1000000);
BENCHMARK(BM_ButterworthChain)->Arg(10)->Arg(1000000);

BENCHMARK_MAIN();
