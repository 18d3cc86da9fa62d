#!/usr/bin/python3
"""Fails when a source file includes a header of a higher layer.

Layers, lowest first: services, the settings framework, dsp, formats, the engine (core/,
devices/ and the application's settings classes, which name engine types), server, app.
The engine's records in core/ are plain header-only values that every layer may include.
Usage: layer_check.py ROOT   (prints each wrong-way include; exit 1 when there is one)
"""
import pathlib
import re
import sys

LAYERS = ["services", "settings framework", "dsp", "formats", "engine", "server", "app"]
FOLDER_LAYER = {"services": 0, "settings": 1, "dsp": 2, "formats": 3, "core": 4, "devices": 4,
                "server": 5, "app": 6}
ENGINE_SETTINGS = {"settings/OrvexSettings", "settings/VirtualDevicesSettings"}
SHARED_RECORDS = {"core/DeviceInfo.h", "core/TimestampedData.h", "core/StandartRhythmSample.h",
                  "core/RhythmNormSample.h", "core/CortexDataResult.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def layer_of(path):
    """Layer index of a project path such as "core/CortexCore.h"; None outside the layers."""
    if path in SHARED_RECORDS:
        return -1
    if path.rsplit(".", 1)[0] in ENGINE_SETTINGS:
        return FOLDER_LAYER["core"]
    return FOLDER_LAYER.get(path.split("/", 1)[0])


def wrong_way_includes(root):
    for source in sorted(root.rglob("*")):
        if source.suffix not in (".h", ".cpp"):
            continue
        relative = source.relative_to(root).as_posix()
        own = layer_of(relative)
        if own is None or own < 0:
            continue
        for included in INCLUDE.findall(source.read_text(encoding="utf-8", errors="replace")):
            target = layer_of(included)
            if target is not None and target > own:
                yield f"{relative}: includes {included} ({LAYERS[own]} -> {LAYERS[target]})"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    found = list(wrong_way_includes(root))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
