"""scipy reference for bench_filters: sosfilt on the engine's default chain at 250 Hz.

The chain as second-order sections: 4th-order Butterworth high-pass at 2 Hz (2 sections),
4th-order low-pass at 40 Hz (2 sections) and the two-pole notch at 50 Hz with a 2 Hz bandwidth
(1 section). Prints "<name> <samples per second>" lines, names matching bench_filters.
Rates use process CPU time, as Google Benchmark's items_per_second does, and the best of a
few runs. Run with /usr/bin/python3 (Debian's numpy and scipy).
"""
import sys
import time

import numpy as np
from scipy import signal

FS = 250.0
LONG = 1_000_000
BLOCK = 10
BLOCK_SAMPLES = 200_000   # per-block calls: 20,000 calls of 10 samples


def notch_sos(fs, f0, bw):
    r = np.float32(1.0 - 3.0 * abs(bw) / fs)
    r2 = np.float32(r * r)
    cw = np.cos(2.0 * np.pi * f0 / fs)
    k = (1.0 - 2.0 * float(r) * cw + float(r2)) / (2.0 - 2.0 * cw)
    return np.array([[k, -2.0 * k * cw, k, 1.0, -2.0 * float(r) * cw, float(r2)]])


HP = signal.butter(4, 2.0, btype="high", fs=FS, output="sos")
LP = signal.butter(4, 40.0, btype="low", fs=FS, output="sos")
NOTCH = notch_sos(FS, 50.0, 2.0)
CHAIN = np.vstack([HP, LP, NOTCH])


def best_rate(fn, samples, repeats):
    best = float("inf")
    for _ in range(repeats):
        start = time.process_time()
        fn()
        best = min(best, time.process_time() - start)
    return samples / best


def long_rate(sos, x):
    return best_rate(lambda: signal.sosfilt(sos, x), len(x), 5)


def block_rate(sos, x):
    def run():
        zi = np.zeros((sos.shape[0], 2))
        for start in range(0, len(x), BLOCK):
            _, zi = signal.sosfilt(sos, x[start:start + BLOCK], zi=zi)
    return best_rate(run, len(x), 3)


def main():
    rng = np.random.default_rng(7)
    t = np.arange(LONG) / FS
    x = (30 * np.sin(2 * np.pi * 10 * t) + 10 * np.sin(2 * np.pi * 50 * t) + 20
         + rng.normal(0, 5, LONG)).astype(np.float32)
    for name, sos in (("EngineChain", CHAIN), ("FirHighPass", HP), ("FirLowPass", LP),
                      ("Notch", NOTCH)):
        print(f"{name}/{LONG} {long_rate(sos, x):.6g}")
        print(f"{name}/{BLOCK} {block_rate(sos, x[:BLOCK_SAMPLES]):.6g}")
    sys.stdout.flush()


if __name__ == "__main__":
    main()
