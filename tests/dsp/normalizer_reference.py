"""Reference rhythm normalizer for tst_rhythmnormalizer_reference, written from the formulas
in float32 with numpy.

Prints one JSON array on stdout: per case {"id", "params" (the eleven init arguments),
"input", and after each input "low", "top", "raw" (raw level) and "level" (smoothed)}.
"""
import json

import numpy as np

f32 = np.float32


def wandering(r):
    """Alpha share wandering in 20..40 %, then a step up to 60 % and down to 10 %."""
    alpha = np.clip(30 + np.cumsum(r.normal(0, 0.5, 1200)), 22, 38) + r.uniform(-2, 2, 1200)
    return np.concatenate([alpha, np.full(60, 60.0), np.full(60, 10.0)])


CASES = [
    ("defaults", [0, 100, 0, 100, 1000, 0, 100, 10, 1000, 16, True], wandering),
    ("unlimited_odd", [10, 60, 5, 40, 20, 30, 80, 7, 31, 5, False], lambda r: r.uniform(-20, 150, 400)),
    ("equal_initial", [50, 50, 0, 100, 8, 0, 100, 8, 8, 3, True], lambda r: r.uniform(0, 120, 300)),
    ("low_over_top", [0, 100, 60, 100, 10, 0, 50, 10, 12, 4, True], lambda r: r.uniform(0, 100, 300)),
    ("fractions", [0.7, 33.3, 0.1, 99.9, 37, 0.3, 77.7, 13, 50, 300, True], lambda r: r.uniform(0.1, 3.3, 500)),
    # Plateaus put values right at the window means, where the rounding of the mean counts.
    ("plateaus", [2, 8, 0, 100, 7, 0, 100, 10, 20, 4, True],
     lambda r: np.repeat(np.round(r.uniform(0, 10, 40), 1), 15)),
]


def ordered_sum(values):
    """Left-to-right float32 sum (np.sum pairs terms up and rounds differently)."""
    return np.add.accumulate(values, dtype=np.float32)[-1]


def split_mean(window, upper):
    mean = ordered_sum(window / f32(len(window)))
    chosen = window[window >= mean] if upper else window[window < mean]
    return f32(ordered_sum(chosen) / f32(chosen.size)) if chosen.size else None


def run(params, inputs):
    """History size must be positive (a history of 0 makes the normalizer inert)."""
    init_low, init_top, low_min, low_max, low_n, top_min, top_max, top_n, size, smoothing, limit = params
    low_min, low_max, top_min, top_max = map(f32, (low_min, low_max, top_min, top_max))
    low, top = max(f32(init_low), low_min), max(f32(init_top), top_min)
    length = (smoothing & 0xFF) or 1
    history = np.array([init_low, init_top] * ((size + 1) // 2), dtype=np.float32)
    levels, rows = [], []
    for x in inputs:
        v = x if x > 0 else f32(0)
        v = min(f32(100), v) if limit else v
        history = np.append(history, v)[-size:]
        estimate = split_mean(history[-low_n:], False) if len(history) >= low_n else None
        low = low if estimate is None else min(low_max, max(low_min, estimate))
        estimate = split_mean(history[-top_n:], True) if len(history) >= top_n else None
        top = top if estimate is None else min(top_max, max(top_min, estimate))
        top = f32(low + f32(0.01)) if low >= top else top
        raw = f32(f32(v - low) * f32(100)) / f32(top - low)
        raw = f32(100) if limit and raw > 100 else max(f32(0), raw)
        levels = (levels + [int(raw)])[-length:]
        rows.append([float(low), float(top), float(raw), float(sum(levels) // len(levels))])
    return np.array(rows).T.tolist()


def main():
    out = []
    for index, (name, params, make) in enumerate(CASES):
        inputs = make(np.random.default_rng(index)).astype(np.float32)
        low, top, raw, level = run(params, inputs)
        out.append({"id": name, "params": params, "input": inputs.tolist(), "low": low,
                    "top": top, "raw": raw, "level": level})
    print(json.dumps(out))


if __name__ == "__main__":
    main()
