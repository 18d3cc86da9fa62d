#!/usr/bin/python3
"""Many WebSocket clients at once against the running program: each sends its commands in one
go and must get every reply, in the order sent. Prints one JSON object:
{"clients", "replies", "failures": [text...]}.

Usage: api_load.py HTTP_PORT WS_PORT [CLIENTS] [COMMANDS_PER_CLIENT]
"""
import asyncio
import json
import sys
import urllib.request

import websockets

HTTP_PORT, WS_PORT = int(sys.argv[1]), int(sys.argv[2])
CLIENTS = int(sys.argv[3]) if len(sys.argv) > 3 else 100
COMMANDS = int(sys.argv[4]) if len(sys.argv) > 4 else 100
# Replies name their command, so a reply out of place shows in the sequence of names.
CYCLE = [("version", "version"), ('{"command": "deviceCount"}', "devicecount"), ("getFilters", "getfilters"),
         ("bci", "bci"), ("getDataStorageTime?node=0", "getdatastoragetime"), ("nosuch", "nosuch")]


async def client(index, failures):
    expected = [CYCLE[(index + i) % len(CYCLE)][1] for i in range(COMMANDS)]
    try:
        async with websockets.connect("ws://127.0.0.1:%d" % WS_PORT, open_timeout=30, max_queue=None) as socket:
            for i in range(COMMANDS):
                await socket.send(CYCLE[(index + i) % len(CYCLE)][0])
            got = []
            while len(got) < COMMANDS:
                reply = json.loads(await asyncio.wait_for(socket.recv(), 60))
                if reply.get("command") != "controloptions":
                    got.append(reply.get("command"))
    except Exception as error:  # a dropped connection or a time-out is this client's failure
        failures.append("client %d: %s: %s" % (index, type(error).__name__, error))
        return 0
    if got != expected:
        first = next(i for i, (a, b) in enumerate(zip(got, expected)) if a != b)
        failures.append("client %d: reply %d is %r, expected %r" % (index, first, got[first], expected[first]))
    return len(got)


async def main():
    failures = []
    counts = await asyncio.gather(*(client(i, failures) for i in range(CLIENTS)))
    try:
        with urllib.request.urlopen("http://127.0.0.1:%d/version" % HTTP_PORT, timeout=10) as reply:
            alive = json.load(reply).get("result") is True
    except OSError as error:
        alive = False
        failures.append("server after the load: %s" % error)
    if not alive:
        failures.append("the server does not answer after the load")
    print(json.dumps({"clients": CLIENTS, "replies": sum(counts), "failures": failures}))


asyncio.run(main())
