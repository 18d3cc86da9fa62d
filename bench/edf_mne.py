"""MNE reference for bench_edf: wall time of mne.io.read_raw_edf(FILE, preload=True).

Usage: edf_mne.py FILE. Prints "ReadHourEdf <seconds>", the best of three reads (page cache
warm, as for ours). Run with /usr/bin/python3 (Debian's MNE).
"""
import sys
import time

import mne


def main():
    path = sys.argv[1]
    best = float("inf")
    for _ in range(3):
        start = time.perf_counter()
        raw = mne.io.read_raw_edf(path, preload=True, verbose="error")
        best = min(best, time.perf_counter() - start)
        del raw
    print(f"ReadHourEdf {best:.6g}")


if __name__ == "__main__":
    main()
