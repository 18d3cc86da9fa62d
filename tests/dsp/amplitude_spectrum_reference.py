"""Reference spectra and rhythm shares for tst_spectrum_numpy, computed with numpy in double.

Reads one JSON job from stdin: {"dir": folder, "rhythms": [[name, from, to], ...],
"cases": [{"id", "rate", "window", "step", "percent", "seed"}, ...]}.
Per case it writes <dir>/<id>.input.f32 (raw little-endian float32): a stream of N + 2 * step
samples (sines in every rhythm band, an offset and Gaussian noise from `seed`), and computes the
spectrum of the three windows starting at 0, step and 2 * step:
  mean removal; a Tukey taper whose flanks are the two halves of a periodic Hann window of
  L = int(2 n p) points, p = percent / 100 clamped to 0 ... 0.5, scaled by n / ((n - L) + sum(hann));
  zero padding to the next power of two; amplitudes 2 |X| / n for bins 0 ... nfft / 2.
Rhythm shares: 100 * sum(bins first ... end - 1) / sum(all bins), where first and end are the
first bins whose float32 frequency is at or above the band's limits.
Prints one JSON object {id: {"N", "step", "nfft", "spectra": [...], "rhythms": [...]}};
any failure raises (non-zero exit, traceback on stderr).
"""
import json
import math
import os
import sys

import numpy as np

TONES = ((2.0, 20.0), (6.0, 12.0), (10.0, 30.0), (21.0, 8.0), (40.0, 3.0))  # Hz, amplitude


def samples(rate, seconds):
    # Rate times seconds in float32, rounded half away from zero.
    return int(math.floor(float(np.float32(rate) * np.float32(seconds)) + 0.5))


def make_stream(rate, count, seed):
    rng = np.random.default_rng(seed)
    t = np.arange(count) / rate
    x = 100.0 + rng.normal(0.0, 5.0, count)
    for frequency, amplitude in TONES:
        x += amplitude * np.sin(2 * np.pi * frequency * t + rng.uniform(0, 2 * np.pi))
    return x.astype("<f4")


def taper(n, percent):
    p = min(0.5, max(0.0, percent / 100.0))
    length = int(2.0 * n * p)
    if length < 1 or length > n:
        return np.ones(n)
    hann = 0.5 * (1.0 - np.cos(2.0 * np.pi * np.arange(length) / length))
    window = np.ones(n)
    head = length // 2
    window[:head] = hann[:head]
    window[n - (length - head):] = hann[head:]
    return window * (n / ((n - length) + hann.sum()))


def spectrum(block, nfft, window):
    x = block.astype(np.float64)
    x = (x - x.mean()) * window
    return 2.0 * np.abs(np.fft.fft(x, nfft)[: nfft // 2 + 1]) / len(block)


def shares(amplitudes, frequencies, rhythms):
    total = amplitudes.sum()
    result = {"sum": total}
    for name, low, high in rhythms:
        first, end = (int(np.searchsorted(frequencies, np.float32(f), side="left")) for f in (low, high))
        first, end = (0 if i >= len(frequencies) else i for i in (first, end))
        if first < end:
            result[name] = 100.0 * amplitudes[first:end].sum() / total
    return result


def run_case(folder, case, rhythms):
    rate = case["rate"]
    n = samples(rate, case["window"])
    step = samples(rate, case["step"])
    nfft = 1 << (n - 1).bit_length()
    stream = make_stream(rate, n + 2 * step, case["seed"])
    stream.tofile(os.path.join(folder, case["id"] + ".input.f32"))
    frequencies = np.arange(nfft // 2 + 1, dtype=np.float32) * np.float32(rate / nfft)
    window = taper(n, case["percent"])
    spectra = [spectrum(stream[k * step: k * step + n], nfft, window) for k in range(3)]
    return {"N": n, "step": step, "nfft": nfft, "spectra": [s.tolist() for s in spectra],
            "rhythms": [shares(s, frequencies, rhythms) for s in spectra]}


def main():
    job = json.load(sys.stdin)
    reply = {case["id"]: run_case(job["dir"], case, job["rhythms"]) for case in job["cases"]}
    json.dump(reply, sys.stdout)


if __name__ == "__main__":
    main()
