"""What MNE reads from EDF/BDF files, for the interoperability tests.

Usage: edf_mne_reference.py [--no-data] FILE...
Prints one JSON list with an object per file:
  {"path", "ch_names", "sfreq", "n_times", "annotations": [{"onset", "duration", "description"}],
   "data": [[value, ...] per channel]}   (values in the file's physical unit; left out with --no-data)
Onsets are MNE's: seconds from the first sample. Any failure raises (non-zero exit).
"""
import json
import os
import sys

import mne


def describe(path, with_data):
    reader = mne.io.read_raw_bdf if path.lower().endswith(".bdf") else mne.io.read_raw_edf
    raw = reader(path, preload=with_data, verbose="error")
    result = {
        "path": path,
        "ch_names": list(raw.ch_names),
        "sfreq": float(raw.info["sfreq"]),
        "n_times": int(raw.n_times),
        "annotations": [
            {"onset": float(a["onset"]), "duration": float(a["duration"]),
             "description": str(a["description"])}
            for a in raw.annotations
        ],
    }
    if with_data:
        # MNE scales "uV" channels to volts; undo that to compare with the written values.
        units = raw._raw_extras[0]["units"]
        data = raw.get_data()
        result["data"] = [(data[i] / units[i]).tolist() for i in range(len(raw.ch_names))]
    return result


def main():
    args = sys.argv[1:]
    with_data = "--no-data" not in args
    paths = [a for a in args if a != "--no-data"]
    json.dump([describe(os.path.abspath(p), with_data) for p in paths], sys.stdout)


if __name__ == "__main__":
    main()
