#!/usr/bin/env bash
# Filter throughput: our chain (bench_filters) against scipy's sosfilt on the same sections.
# Builds nothing. Usage: bench/run_filters.sh [build folder]   (default: build/ beside bench/)
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="${1:-$here/../build}"
bench="$build/bench/bench_filters"
python=/usr/bin/python3

if [[ ! -x "$bench" ]]; then
    echo "run_filters.sh: $bench not found; build the bench_filters target first" >&2
    exit 1
fi

tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT

"$bench" --benchmark_min_time=0.5 --benchmark_format=json --benchmark_out="$tmp/ours.json" \
    --benchmark_out_format=json > /dev/null
"$python" "$here/filters_scipy.py" > "$tmp/scipy.txt"

"$python" - "$tmp/ours.json" "$tmp/scipy.txt" <<'PY'
import json, sys

ours = {}
for b in json.load(open(sys.argv[1]))["benchmarks"]:
    if b.get("run_type", "iteration") == "iteration" and "items_per_second" in b:
        ours[b["name"].removeprefix("BM_")] = b["items_per_second"]
scipy = dict((name, float(rate)) for name, rate in (line.split() for line in open(sys.argv[2])))

print(f"{'benchmark (samples/s, 250 Hz)':34} {'ours':>12} {'scipy sosfilt':>14} {'ratio':>8}")
for name, rate in ours.items():
    ref = scipy.get(name)
    if ref is None:
        print(f"{name:34} {rate / 1e6:10.1f} M {'-':>14} {'-':>8}")
    else:
        print(f"{name:34} {rate / 1e6:10.1f} M {ref / 1e6:12.2f} M {rate / ref:7.2f}x")
PY
