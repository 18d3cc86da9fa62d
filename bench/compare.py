"""Prints our Google Benchmark figures beside a reference measured in the same run.

Usage: compare.py OURS.json REFERENCE.txt rate|time
OURS.json is Google Benchmark's JSON output; REFERENCE.txt has "<name> <value>" lines whose
names match ours without the "BM_" prefix: samples per second ("rate") or seconds per call
("time"). Run with /usr/bin/python3.
"""
import json
import sys


def main():
    ours_path, reference_path, mode = sys.argv[1:4]
    reference = dict((name, float(value)) for name, value in (line.split() for line in open(reference_path)))
    rate = mode == "rate"
    unit = "M samples/s" if rate else "µs per call"
    print(f"{'benchmark (' + unit + ')':40} {'ours':>10} {'reference':>10} {'ratio':>8}")
    for bench in json.load(open(ours_path))["benchmarks"]:
        if bench.get("run_type", "iteration") != "iteration" or "items_per_second" not in bench:
            continue
        name = bench["name"].removeprefix("BM_")
        ours = bench["items_per_second"] if rate else 1.0 / bench["items_per_second"]
        ref = reference.get(name)
        scale = 1e-6 if rate else 1e6
        if ref is None:
            print(f"{name:40} {ours * scale:10.2f} {'-':>10} {'-':>8}")
        else:
            # Ratio as "how many times better than the reference".
            better = ours / ref if rate else ref / ours
            print(f"{name:40} {ours * scale:10.2f} {ref * scale:10.2f} {better:7.2f}x")


if __name__ == "__main__":
    main()
