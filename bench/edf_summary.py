"""Prints bench_edf's figures beside their references and goals.

Usage: edf_summary.py OURS.json MNE.txt PLAYBACK_START PLAYBACK_END
OURS.json is bench_edf's Google Benchmark JSON output, MNE.txt the line edf_mne.py printed,
PLAYBACK_START/END the wall clock (s) around one headless playback of the hour
(--speed 0 --record).
"""
import json
import sys


def main():
    ours_path, mne_path = sys.argv[1], sys.argv[2]
    playback = float(sys.argv[4]) - float(sys.argv[3])
    # Names look like "BM_WriteHourEdf/iterations:3/real_time"; times are in ms.
    ms = {b["name"].split("/")[0].removeprefix("BM_"): b["real_time"] / 1000.0
          for b in json.load(open(ours_path))["benchmarks"] if b.get("run_type", "iteration") == "iteration"}
    mne = float(open(mne_path).read().split()[1])
    write, plain, read = ms["WriteHourEdf"], ms["PlainWriteHour"], ms["ReadHourEdf"]
    print(f"{'one hour, 21 channels, 250 Hz':44} {'seconds':>8} {'reference':>10} {'ratio':>7}  goal")
    print(f"{'write: EDFWriter vs plain write()':44} {write:8.3f} {plain:10.3f} {write / plain:6.2f}x  <= 2x")
    print(f"{'read into floats: ours vs MNE preload':44} {read:8.3f} {mne:10.3f} {mne / read:6.2f}x  ours faster (> 1x)")
    print(f"{'headless playback --speed 0 --record':44} {playback:8.3f} {'-':>10} {'-':>7}  <= 6 s")


if __name__ == "__main__":
    main()
