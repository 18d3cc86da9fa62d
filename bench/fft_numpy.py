"""numpy reference for bench_spectrum: numpy.fft.fft on 1024 complex points.

Prints "Fft1024 <seconds per call>": the best of several timeit repeats, each of many calls,
on process CPU time (as Google Benchmark's rates are). numpy transforms in double precision.
Run with /usr/bin/python3 (Debian's numpy).
"""
import time
import timeit

import numpy as np

N = 1024
CALLS = 20000
REPEATS = 7


def main():
    rng = np.random.default_rng(7)
    x = (rng.normal(size=N) + 1j * rng.normal(size=N)).astype(np.complex128)
    fft = np.fft.fft
    fft(x)
    timer = timeit.Timer(lambda: fft(x), timer=time.process_time)
    best = min(timer.repeat(repeat=REPEATS, number=CALLS)) / CALLS
    print(f"Fft1024 {best:.6g}")


if __name__ == "__main__":
    main()
