"""Reference output for tst_playback_scipy: a recording's samples through the default chain.

Usage: playback_reference.py FILE.edf OUT.f64 HP LP NOTCH
Reads FILE.edf with MNE (the quantised samples as stored), restores the recorder's polarity
(the file stores the opposite sign), and runs every channel through, in this order, an
order-4 Butterworth high-pass at HP Hz, an order-4 Butterworth low-pass at LP Hz (scipy's
butter, second-order sections) and the two-pole notch at NOTCH Hz with a 2 Hz bandwidth,
all from zero state with scipy.signal.sosfilt. Writes the result channel after channel as
little-endian float64 to OUT.f64 and prints {"ch_names", "sfreq", "n_times"} as JSON.
"""
import json
import sys

import mne
import numpy as np
from scipy import signal


def notch_section(fs, f0, bw):
    # The notch's own design: pole radius and its square in single precision.
    r = np.float32(1.0 - 3.0 * abs(bw) / fs)
    r2 = np.float32(r * r)
    cw = np.cos(2.0 * np.pi * f0 / fs)
    k = (1.0 - 2.0 * float(r) * cw + float(r2)) / (2.0 - 2.0 * cw)
    return np.array([[k, -2.0 * k * cw, k, 1.0, -2.0 * float(r) * cw, float(r2)]])


def main():
    path, out, hp, lp, notch = sys.argv[1], sys.argv[2], *map(float, sys.argv[3:6])
    raw = mne.io.read_raw_edf(path, preload=True, verbose="error")
    fs = float(raw.info["sfreq"])
    x = -raw.get_data() * 1e6  # volts -> microvolts, recorder polarity
    sos = np.vstack([signal.butter(4, hp, btype="high", fs=fs, output="sos"),
                     signal.butter(4, lp, btype="low", fs=fs, output="sos"),
                     notch_section(fs, notch, 2.0)])
    signal.sosfilt(sos, x, axis=1).astype("<f8").tofile(out)
    json.dump({"ch_names": list(raw.ch_names), "sfreq": fs, "n_times": int(raw.n_times)}, sys.stdout)


if __name__ == "__main__":
    main()
