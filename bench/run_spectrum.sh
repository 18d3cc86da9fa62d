#!/usr/bin/env bash
# Spectrum cost: our 1024-point fft (bench_spectrum) against numpy.fft.fft on the same size,
# and one whole calculateSpectrum at 250 Hz / 4 s. Builds nothing.
# Usage: bench/run_spectrum.sh [build folder]   (default: build/ beside bench/)
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="${1:-$(dirname "$0")/../build}"
bench="$build/bench/bench_spectrum"
python=/usr/bin/python3

if [[ ! -x "$bench" ]]; then
    echo "run_spectrum.sh: $bench not found; build the bench_spectrum target first" >&2
    exit 1
fi

tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT

"$bench" --benchmark_min_time=0.5 --benchmark_format=json --benchmark_out="$tmp/ours.json" \
    --benchmark_out_format=json > /dev/null
"$python" "$here/fft_numpy.py" > "$tmp/numpy.txt"

"$python" - "$tmp/ours.json" "$tmp/numpy.txt" <<'PY'
import json, sys

ours = {}
for b in json.load(open(sys.argv[1]))["benchmarks"]:
    if b.get("run_type", "iteration") == "iteration" and "items_per_second" in b:
        ours[b["name"].removeprefix("BM_")] = 1.0 / b["items_per_second"]
numpy = dict((name, float(t)) for name, t in (line.split() for line in open(sys.argv[2])))

print(f"{'per call (µs)':34} {'ours':>10} {'numpy':>10} {'ours/numpy':>11}")
for name, t in ours.items():
    ref = numpy.get(name)
    if ref is None:
        print(f"{name:34} {t * 1e6:10.2f} {'-':>10} {'-':>11}")
    else:
        print(f"{name:34} {t * 1e6:10.2f} {ref * 1e6:10.2f} {t / ref:10.2f}x")
PY
