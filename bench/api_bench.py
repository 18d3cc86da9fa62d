#!/usr/bin/python3
"""Throughput and latency of the command interface of a running program.

Starts `orvexpro --headless` with the generator at 21 channels and 250 Hz in a scratch home,
then measures with wrk: requests per second on `version` (goal >= 10,000/s), on
`grabFilteredData` (grab mode on) and on `filteredData` with a storage time of 1 s (every reply
one second of 21 channels); the cost of one grab holding one second of data; and the WebSocket
round trip of `bci` (goal: within the 30 ms queue drain plus 5 ms).

Usage: api_bench.py ORVEXPRO_BINARY [SECONDS_PER_WRK_RUN]
"""
import asyncio
import json
import os
import re
import socket
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

import websockets

BINARY = sys.argv[1]
SECONDS = int(sys.argv[2]) if len(sys.argv) > 2 else 10
WS_PORT = 1336
CHANNELS = ("Fp1,Fp2,F7,F3,Fz,F4,F8,T3,C3,Cz,C4,T4,T5,P3,Pz,P4,T6,O1,O2,A1,A2")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def get(port, path):
    with urllib.request.urlopen("http://127.0.0.1:%d/%s" % (port, path), timeout=10) as reply:
        return reply.read()


def wrk(port, path, connections=64):
    out = subprocess.run(["wrk", "-t2", "-c%d" % connections, "-d%ds" % SECONDS, "--latency",
                          "http://127.0.0.1:%d/%s" % (port, path)], capture_output=True, text=True).stdout
    rate = re.search(r"Requests/sec:\s+([\d.]+)", out)
    transfer = re.search(r"Transfer/sec:\s+(\S+)", out)
    median = re.search(r"^\s*50%\s+(\S+)", out, re.M)
    errors = re.search(r"Socket errors:.*", out)
    non2xx = re.search(r"Non-2xx.*", out)
    return {"rate": float(rate.group(1)) if rate else 0.0, "transfer": transfer.group(1) if transfer else "?",
            "median": median.group(1) if median else "?",
            "errors": " ".join(m.group(0) for m in (errors, non2xx) if m) or "none"}


def report(title, result):
    print("%-44s %10.0f req/s  median %-8s %-10s errors: %s"
          % (title, result["rate"], result["median"], result["transfer"] + "/s", result["errors"]))


def one_second_grabs(port, count=5):
    """Times single grabs that each collect one second of data."""
    times, sizes = [], []
    get(port, "grabFilteredData")
    for _ in range(count):
        time.sleep(1.0)
        start = time.perf_counter()
        body = get(port, "grabFilteredData")
        times.append((time.perf_counter() - start) * 1000)
        sizes.append(len(body))
        data = json.loads(body)["data"]
    return statistics.median(times), statistics.median(sizes), len(data), len(data[0]) if data else 0


async def round_trips(count=300):
    async with websockets.connect("ws://127.0.0.1:%d" % WS_PORT) as ws:
        times = []
        for _ in range(count):
            start = time.perf_counter()
            await ws.send("bci")
            while json.loads(await ws.recv()).get("command") != "bci":
                pass
            times.append((time.perf_counter() - start) * 1000)
    times.sort()
    return statistics.median(times), times[int(len(times) * 0.99) - 1], times[-1]


def main():
    port = free_port()
    with tempfile.TemporaryDirectory() as home:
        env = dict(os.environ, HOME=home, XDG_CONFIG_HOME=os.path.join(home, "config"), QT_QPA_PLATFORM="offscreen")
        program = subprocess.Popen([BINARY, "--headless", "--device", "generator", "--api-port", str(port),
                                    "--set", "GeneratorChannelNames=" + CHANNELS, "--set",
                                    "GeneratorSamplingRate=250"], env=env)
        try:
            for _ in range(100):
                try:
                    info = json.loads(get(port, "currentDeviceInfo"))
                    if info.get("device"):
                        break
                except OSError:
                    pass
                time.sleep(0.2)
            print("device: %d channels at %g Hz; wrk: 2 threads, 64 connections, %d s per run"
                  % (info["currentChannels"], info["currentFrequency"], SECONDS))
            report("version", wrk(port, "version"))
            get(port, "enableDataGrabMode")
            report("grabFilteredData (what arrived since the last)", wrk(port, "grabFilteredData"))
            ms, size, channels, samples = one_second_grabs(port)
            print("%-44s %10.2f ms per request, %d bytes (%d channels x %d samples)"
                  % ("grabFilteredData holding 1 s", ms, size, channels, samples))
            get(port, "setDataStorageTime?value=1")
            report("filteredData, storage time 1 s", wrk(port, "filteredData", 16))
            median, p99, worst = asyncio.run(round_trips())
            print("%-44s median %.1f ms, p99 %.1f ms, max %.1f ms (goal: p99 <= 35 ms)"
                  % ("WebSocket round trip of bci", median, p99, worst))
            alive = json.loads(get(port, "version")).get("result") is True
            print("server alive after the runs: %s" % alive)
        finally:
            program.terminate()
            program.wait(15)


if __name__ == "__main__":
    main()
