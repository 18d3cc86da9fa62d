"""Reference outputs for tst_filters_scipy, computed with scipy.

Reads one JSON job from stdin: {"dir": folder, "cases": [...]}. The shared input signal is
<dir>/input.f32 (raw little-endian float32). Per case:
  {"id", "kind": "butter", "btype": "low"|"high", "order", "fc", "fs"}
      reads  <id>.impulse.f32  (the impulse response measured from our filter)
      writes <id>.output.f64   sosfilt of the input through scipy's Butterworth sections
             <id>.freqz.f64    |H| from sosfreqz on the rfft grid, then |rfft(impulse)|
  {"id", "kind": "notch", "fs", "f0", "bw"}
      writes <id>.output.f64   lfilter of the input with b, a from the two-pole notch formula
Prints one line per case; any failure raises (non-zero exit, traceback on stderr).
"""
import json
import os
import sys

import numpy as np
from scipy import signal


def butter_case(folder, case, x):
    sos = signal.butter(case["order"], case["fc"], btype=case["btype"], fs=case["fs"],
                        output="sos")
    signal.sosfilt(sos, x).astype("<f8").tofile(os.path.join(folder, case["id"] + ".output.f64"))
    impulse = np.fromfile(os.path.join(folder, case["id"] + ".impulse.f32"), dtype="<f4")
    measured = np.abs(np.fft.rfft(impulse.astype(np.float64)))
    grid = np.fft.rfftfreq(len(impulse), d=1.0 / case["fs"])
    _, h = signal.sosfreqz(sos, worN=grid, fs=case["fs"])
    np.concatenate([np.abs(h), measured]).astype("<f8").tofile(
        os.path.join(folder, case["id"] + ".freqz.f64"))


def notch_case(folder, case, x):
    fs, f0, bw = case["fs"], case["f0"], case["bw"]
    r = np.float32(1.0 - 3.0 * abs(bw) / fs)      # R and R^2 are single precision
    r2 = np.float32(r * r)
    cw = np.cos(2.0 * np.pi * f0 / fs)
    k = (1.0 - 2.0 * float(r) * cw + float(r2)) / (2.0 - 2.0 * cw)
    b = [k, -2.0 * k * cw, k]
    a = [1.0, -2.0 * float(r) * cw, float(r2)]
    signal.lfilter(b, a, x).astype("<f8").tofile(os.path.join(folder, case["id"] + ".output.f64"))


def main():
    job = json.load(sys.stdin)
    folder = job["dir"]
    x = np.fromfile(os.path.join(folder, "input.f32"), dtype="<f4").astype(np.float64)
    for case in job["cases"]:
        {"butter": butter_case, "notch": notch_case}[case["kind"]](folder, case, x)
        print("done", case["id"])


if __name__ == "__main__":
    main()
