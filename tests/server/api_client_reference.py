#!/usr/bin/python3
"""An outside client of the running program: HTTP through curl, WebSocket through the
websockets package, EDF files through MNE. It runs one section of checks and prints one JSON
object: {"section", "failures": [text...], "checks": n, "covered": [command words]}.

Usage: api_client_reference.py HTTP_PORT WS_PORT SECTION WORK_FOLDER
"""
import asyncio
import base64
import datetime
import json
import os
import re
import subprocess
import sys
import time
import urllib.parse

import websockets

HTTP_PORT, WS_PORT, SECTION, WORK = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3], sys.argv[4]
BASE = "http://127.0.0.1:%d/" % HTTP_PORT
WS_URL = "ws://127.0.0.1:%d" % WS_PORT

GRAB_TEXT = ("For general optimisation this data is available in data grab mode only. "
             "Use command 'enableDataGrabMode' to start grabbing data history")
NOT_RECORDING = "Record has not been started"
PLEASE_SPECIFY = "Please specify a command (e.g. '{\"command\":\"listDevices\"}')"
TIME_FORMAT = re.compile(r"^\d{4}\.\d{2}\.\d{2}-\d{2}\.\d{2}\.\d{2}\.\d{3}$")
SPECTRUM_KEYS = ["spectrum", "frequencyStepHz", "windowSeconds", "windowStepSeconds", "hanningPercent",
                 "deviceFrequencyHz"]

failures = []
covered = set()
checks = 0


def check(condition, text):
    global checks
    checks += 1
    if not condition:
        failures.append(text)
    return condition


def unsupported(word):
    return ("Unsupported command '%s'. Please use 'help' command to see the list of supported commands"
            % word)


# ---- transports ------------------------------------------------------------------------------

def curl(path, body=None):
    """Returns (status, headers as a lower-cased dict, body bytes)."""
    command = ["curl", "-sS", "--max-time", "20", "-i", BASE + path]
    if body is not None:
        command += ["--data-binary", "@-", "-H", "Content-Type: application/octet-stream"]
    done = subprocess.run(command, input=body, capture_output=True)
    if done.returncode != 0:
        # The program is gone or stuck: one failure for the section, not one per check.
        raise RuntimeError("%s: %s" % (path, done.stderr.decode(errors="replace").strip()))
    head, _, content = done.stdout.partition(b"\r\n\r\n")
    lines = head.decode("latin-1").split("\r\n")
    status = int(lines[0].split()[1])
    headers = {}
    for line in lines[1:]:
        name, _, value = line.partition(":")
        headers[name.strip().lower()] = value.strip()
    return status, headers, content


def http(path, body=None):
    status, _, content = curl(path, body)
    check(status == 200, "%s: HTTP status %d" % (path, status))
    try:
        return json.loads(content)
    except ValueError:
        failures.append("%s: reply is not JSON: %r" % (path, content[:200]))
        return {}


async def ws_exchange(socket, message):
    """Sends one text message and returns its reply, skipping unrequested pushes."""
    await socket.send(message)
    while True:
        reply = json.loads(await asyncio.wait_for(socket.recv(), 10))
        if reply.get("command") == "controloptions" and "controloptions" not in message.lower():
            continue
        return reply


def ws(messages):
    async def run():
        async with websockets.connect(WS_URL, max_size=None) as socket:
            return [await ws_exchange(socket, message) for message in messages]
    return asyncio.run(run())


# ---- the reply envelope ----------------------------------------------------------------------

def envelope(reply, word, result=True, error=None, keys=(), where=""):
    """Checks the keys every reply carries; error may be an exact text or a compiled pattern."""
    label = "%s %s" % (where or word, json.dumps(reply)[:300])
    check(reply.get("command") == word, "command word: " + label)
    check(isinstance(reply.get("result"), bool) and reply.get("result") == result, "result: " + label)
    stamp = reply.get("time", "")
    if check(isinstance(stamp, str) and TIME_FORMAT.match(stamp), "time format: " + label):
        moment = datetime.datetime.strptime(stamp, "%Y.%m.%d-%H.%M.%S.%f")
        check(abs((datetime.datetime.now() - moment).total_seconds()) < 60, "time is local now: " + label)
    if result:
        check("error" not in reply, "unexpected error: " + label)
    else:
        text = reply.get("error")
        check(isinstance(text, str) and text, "error text missing: " + label)
        if isinstance(error, str):
            check(text == error, "error text %r expected: %s" % (error, label))
        elif error is not None:
            check(isinstance(text, str) and error.match(text), "error pattern %r: %s" % (error.pattern, label))
    for key in keys:
        check(key in reply, "key %r missing: %s" % (key, label))
    if word:
        covered.add(word)
    return reply


def two_decimals(channels):
    for channel in channels:
        for value in channel:
            if abs(value * 100 - round(value * 100)) > 1e-6:
                return False
    return True


# ---- sections --------------------------------------------------------------------------------

def section_envelopes():
    info = envelope(http("currentDeviceInfo"), "currentdeviceinfo",
                    keys=["searching", "currentChannels", "currentChannelsNames", "currentFrequency", "quality",
                          "LPF", "HPF", "BSF", "BSF2", "isRecording", "recordDuration", "device"])
    names = info.get("currentChannelsNames", [])
    devices = envelope(http("listDevices"), "listdevices", keys=["devices"]).get("devices", [])
    serial = next((d.get("serialNumber") for d in devices if d.get("name") == "GeneratorDevice"), None)
    check(serial is not None, "the generator is listed: %r" % devices)
    envelope(http("deviceCount"), "devicecount", keys=["deviceCount"])
    envelope(http("getDeviceInfo?index=0"), "getdeviceinfo", keys=["info"])
    envelope(http("currentDevicesInfo"), "currentdevicesinfo", keys=["devices"])
    envelope(http("startDevice?SN=%s" % serial), "startdevice")
    envelope(http("makeFavorite?value=GeneratorDevice"), "makefavorite")
    favourite = envelope(http("getFavoriteDeviceName"), "getfavoritedevicename", keys=["device"])
    check(favourite.get("device") == "GeneratorDevice", "favourite stored: %r" % favourite)
    envelope(http("setMontage?channelNames=" + ",".join(names)), "setmontage")

    # A search stops the running device; starting it by its list position brings it back.
    envelope(http("startSearch"), "startsearch")
    envelope(http("stopSearch"), "stopsearch")
    envelope(http("meditation"), "meditation", False, "Device is not connected")
    envelope(http("startDevice?index=0"), "startdevice")
    check(isinstance(http("currentDeviceInfo").get("device"), dict), "device started again")

    for word, keys in [("meditation", ["meditation"]), ("concentration", ["concentration"]),
                       ("bci", ["meditation", "concentration", "mentalstate"]), ("bcis", ["results"]),
                       ("controlOptions", ["controls"]), ("rhythms", ["rhythms"]),
                       ("lastSpectrum", SPECTRUM_KEYS), ("getSpectrum", SPECTRUM_KEYS),
                       ("grabSpectrum", SPECTRUM_KEYS), ("filteredData", ["data"]), ("rawData", ["data"]),
                       ("getFilters", ["LPF", "HPF", "BSF", "BSF2"]), ("getDataStorageTime", ["storageTime"]),
                       ("records", ["files"]), ("getUserRecords", ["files"]),
                       ("version", ["version", "port", "locale"]), ("screenInfo", ["screens"]),
                       ("getAllSettings", ["settings", "virtualDeviceSettings"]),
                       ("gameManage", ["screens", "current"])]:
        envelope(http(word), word.lower(), keys=keys)
    for word in ["meditationHistory", "concentrationHistory", "rhythmsHistory", "grabFilteredData",
                 "grabRawData"]:
        envelope(http(word), word.lower(), False, GRAB_TEXT)
    for word in ["stopRecord", "pauseRecord", "continueRecord"]:
        envelope(http(word), word.lower(), False, NOT_RECORDING)
    envelope(http("addLogItem?text=early"), "addlogitem", False, NOT_RECORDING)
    envelope(http("addFileToRecord?extension=txt&body=early"), "addfiletorecord", False, NOT_RECORDING)
    # Without a recording the annotation waits for one that starts soon.
    envelope(http("addEDFAnnotation?text=early"), "addedfannotation")

    envelope(http("setFilters?LPF=40"), "setfilters")
    envelope(http("setLPF?value=40"), "setlpf")
    envelope(http("setHPF?value=2"), "sethpf")
    envelope(http("setBSF?value=50"), "setbsf")
    filters = http("getFilters")
    check([filters.get(k) for k in ("LPF", "HPF", "BSF")] == [40, 2, 50], "filters applied: %r" % filters)
    envelope(http("setDataStorageTime?value=10"), "setdatastoragetime")
    envelope(http("enableDataGrabMode"), "enabledatagrabmode")
    envelope(http("disableDataGrabMode"), "disabledatagrabmode")
    envelope(http("setSettings?key=StorageTime&value=10"), "setsettings")
    value = envelope(http("getSettings?key=storagetime"), "getsettings", keys=["value"])
    check(value.get("value") == "10", "setting read back as text: %r" % value)
    ping = envelope(http("userManage?action=ping"), "usermanage", keys=["response"])
    check(ping.get("response") == "pong", "ping: %r" % ping)
    # Only the refusal: an accepted link would reach the desktop.
    envelope(http("openLink?path=javascript:alert(1)"), "openlink", False,
             re.compile(r"^Only http and https links can be opened"))
    version = http("version")
    check(version.get("port") == HTTP_PORT and version.get("version"), "version reply: %r" % version)

    # The same read-only commands over WebSocket in its three message forms.
    replies = ws(["listDevices", "getDeviceInfo?index=0", '{"command": "ListDevices"}',
                  '{"Command": "BCI", "node": "0"}', "currentDeviceInfo?node=0", "VERSION"])
    for reply, word in zip(replies, ["listdevices", "getdeviceinfo", "listdevices", "bci", "currentdeviceinfo",
                                     "version"]):
        envelope(reply, word, where="websocket " + word)
    check(replies[0].get("devices") == replies[2].get("devices"), "text and JSON forms agree")


def section_errors():
    for word in ["nosuchcommand", "spectrumfrequencies", "existingfiles", "help"]:
        envelope(http(word), word, False, unsupported(word))
    # The Please-specify text belongs to the WebSocket parser only.
    for message in ["a?b?c", "{bad json", '{"node": "0"}']:
        reply = ws([message])[0]
        check(reply.get("error") == PLEASE_SPECIFY and reply.get("result") is False and "command" not in reply,
              "%s: %r" % (message, reply))
        check(("jsonError" in reply) == (message == "{bad json"), "jsonError only for bad JSON: %r" % reply)
        check(TIME_FORMAT.match(reply.get("time", "")), "time on parser errors: %r" % reply)

    cases = [
        ("currentDeviceInfo?node=5", "currentdeviceinfo", False, "This node index does not exist"),
        ("currentDeviceInfo?node=abc", "currentdeviceinfo", True, None),
        ("setDataStorageTime?value=3600", "setdatastoragetime", False, "Provide a number between 1 and 3600 seconds"),
        ("setDataStorageTime?value=0", "setdatastoragetime", False, "Provide a number between 1 and 3600 seconds"),
        ("setDataStorageTime?value=3599", "setdatastoragetime", True, None),
        ("setDataStorageTime?value=1", "setdatastoragetime", True, None),
        ("setDataStorageTime?value=10", "setdatastoragetime", True, None),
        ("setHPF?value=100.5", "sethpf", False, "Filter value should be between 0 (off) and 100 Hz, '100.5' given"),
        ("setHPF?value=x", "sethpf", False, "Could not parse 'x' as float"),
        ("setFilters?LPF=40&HPF=-1", "setfilters", False, None),
        ("startDevice", "startdevice", False, "Please specify any of 'id' or 'sn' as an argument"),
        ("startDevice?sn=G", "startdevice", False, "Provided serial number is too short"),
        ("startDevice?sn=ZZZZ", "startdevice", False, "Device with serial number 'ZZZZ' not found"),
        ("startDevice?channels=-2&id=0", "startdevice", True, None),  # a negative count: the preferred one
        ("getDeviceInfo?index=-1", "getdeviceinfo", False, "Index must be greater than zero"),
        ("getDeviceInfo?id=99", "getdeviceinfo", False, "Index is out of range"),
        ("makeFavorite?value=ab", "makefavorite", False, "Please provide a string of minimum 4 letters long"),
        ("getSettings?key=nope", "getsettings", False, "Unknown setting 'nope'"),
        ("setSettings?key=StorageTime", "setsettings", False, "Provide 'key' and 'value'"),
        ("setMontage", "setmontage", False, "Provide 'channelNames' argument"),
        ("addEDFAnnotation", "addedfannotation", False, "Provide 'text' parameter"),
        ("records?action=get&path=../../etc/passwd", "records", False, "Path is outside the records folder"),
        ("records?action=get&path=nosuch", "records", False, "Record 'nosuch' not found"),
        ("records?action=set&path=x.txt", "records", False, "Provide 'data' or 'data64'"),
        ("userManage?action=login&name=nobody&password=secret1", "usermanage", False, "Wrong name or password"),
    ]
    for path, word, result, error in cases:
        envelope(http(path), word, result, error, where=path)
    refused = envelope(http("setSettings?key=StorageTime&value=99999"), "setsettings", False)
    check(refused.get("error", "").startswith("Value '99999' refused for 'StorageTime': "), "refusal: %r" % refused)
    filters = http("getFilters")
    check(filters.get("LPF") == 40 and filters.get("HPF") == 2, "a refused setFilters changes nothing: %r" % filters)
    check(http("getDataStorageTime").get("storageTime") == 10, "storage time restored")

    # Over WebSocket JSON only string values count: a number arrives as an empty value.
    number, text = ws(['{"command": "setDataStorageTime", "value": 10}',
                       '{"command": "setDataStorageTime", "value": "10"}'])
    envelope(number, "setdatastoragetime", False, "Provide a number between 1 and 3600 seconds", where="number")
    envelope(text, "setdatastoragetime", True, where="string")


def section_grab():
    async def run():
        async with websockets.connect(WS_URL, max_size=None) as socket:
            ask = lambda message: ws_exchange(socket, message)
            envelope(await ask("grabRawData"), "grabrawdata", False, GRAB_TEXT)
            envelope(await ask('{"command": "enableDataGrabMode"}'), "enabledatagrabmode")
            await asyncio.sleep(1.0)
            first = envelope(await ask("grabRawData"), "grabrawdata", keys=["data"])
            second = envelope(await ask("grabRawData"), "grabrawdata", keys=["data"])
            filtered = envelope(await ask("grabFilteredData"), "grabfiltereddata", keys=["data"])
            channels = (await ask("currentDeviceInfo")).get("device", {}).get("currentChannelCount")
            data = first.get("data", [])
            check(len(data) == channels and data and len(data[0]) > 0, "one array per device channel: %d" % len(data))
            check(len({len(c) for c in data}) == 1, "equal channel lengths")
            check(two_decimals(data) and two_decimals(filtered.get("data", [])), "two decimals at most")
            check(len(second.get("data", [[]])[0]) < len(data[0]), "a grab clears the queue")
            for word in ["meditationHistory", "concentrationHistory"]:
                history = envelope(await ask(word), word.lower(), keys=["history"]).get("history")
                check(isinstance(history, list) and all(set(h) == {"t", "v"} for h in history),
                      "history entries: %r" % history)
            rhythms = envelope(await ask("rhythmsHistory"), "rhythmshistory", keys=["rhythms"]).get("rhythms")
            check(isinstance(rhythms, list) and all("channel" in r and "history" in r for r in rhythms),
                  "rhythm history: %r" % (rhythms or [])[:1])
            envelope(await ask("disableDataGrabMode"), "disabledatagrabmode")
            envelope(await ask("grabRawData"), "grabrawdata", False, GRAB_TEXT)
    asyncio.run(run())


def section_record():
    import mne
    info = http("currentDeviceInfo")
    envelope(http("startRecord?path=api/session1"), "startrecord")
    check(http("currentDeviceInfo").get("isRecording") is True, "recording")
    envelope(http("pauseRecord"), "pauserecord")
    envelope(http("pauseRecord"), "pauserecord", False, "Record is already paused")
    envelope(http("continueRecord"), "continuerecord")
    envelope(http("continueRecord"), "continuerecord", False, "Record is not paused")
    envelope(http("setMontage?channelNames=A,B"), "setmontage", False, "Cannot change montage while recording is on")
    envelope(http("addLogItem?text=hello%09there&type=Note"), "addlogitem")
    envelope(http("addEDFAnnotation?text=marker"), "addedfannotation")
    payload = b'{"trial": 1}\n\x00\xff'
    envelope(http("addFileToRecord?extension=.bin", payload), "addfiletorecord")
    envelope(http("addFileToRecord?extension=../x&body=a"), "addfiletorecord", False,
             "The extension may not contain '/', '\\' or '..'")
    time.sleep(2.0)
    stopped = envelope(http("stopRecord"), "stoprecord", keys=["files", "baseName"])
    check(stopped.get("baseName") == "session1", "base name: %r" % stopped.get("baseName"))
    files = {f.get("type"): base64.b64decode(f.get("data", "")) for f in stopped.get("files", [])}
    check({"edf", "log"} <= set(files), "recorded file types: %r" % sorted(files))
    log = files.get("log", b"").decode("utf-8", "replace")
    check("STOP ON WEB COMMAND" in log and "hello there" in log, "log lines: %r" % log[-300:])

    path = os.path.join(WORK, "session1.edf")
    with open(path, "wb") as out:
        out.write(files.get("edf", b""))
    raw = mne.io.read_raw_edf(path, preload=True, verbose="error")
    check(raw.ch_names == info.get("currentChannelsNames"), "EDF channels %r" % raw.ch_names)
    check(abs(raw.info["sfreq"] - info.get("currentFrequency", 0)) < 1e-6, "EDF rate %r" % raw.info["sfreq"])
    check(raw.n_times >= info.get("currentFrequency", 0), "at least a second recorded: %d" % raw.n_times)
    check(abs(raw.get_data()).max() < 1e-2, "physical values in volts")
    check(any("marker" in d for d in raw.annotations.description), "annotation %r" % list(raw.annotations.description))

    envelope(http("stopRecord"), "stoprecord", False, NOT_RECORDING)
    listed = http("records").get("files", [])
    check(any(r.get("path") == "api/session1.edf" for r in listed), "records lists it: %r" % listed)
    fetched = envelope(http("records?action=get&path=api/session1&extensions=log"), "records", keys=["files"])
    check([f.get("type") for f in fetched.get("files", [])] == ["log"], "extension filter: %r" % fetched)
    # Files added by clients lie beside the record and are fetched with it.
    added = http("records?action=get&path=api/session1.edf&extensions=BIN").get("files", [])
    check([base64.b64decode(f.get("data", "")) for f in added] == [payload], "the added file comes back unchanged")
    users = http("getUserRecords").get("files", [])
    check(any(r.get("name") == "session1" for r in users), "user records: %r" % users)


def section_ordering():
    async def run():
        messages = []
        for i in range(50):
            messages.append(["order%d" % i, '{"command": "version", "n": "%d"}' % i, "deviceCount?n=%d" % i][i % 3])
        expected = [["order%d" % i, "version", "devicecount"][i % 3] for i in range(50)]
        async with websockets.connect(WS_URL) as socket:
            for message in messages:
                await socket.send(message)
            replies = []
            while len(replies) < 50:
                reply = json.loads(await asyncio.wait_for(socket.recv(), 10))
                if reply.get("command") != "controloptions":
                    replies.append(reply)
        check([r.get("command") for r in replies] == expected, "reply order: %r" % [r.get("command") for r in replies])
        times = [r.get("time") for r in replies]
        check(times == sorted(times), "reply times never go back")

        # Two clients at once: each gets its own replies only.
        async def client(word):
            async with websockets.connect(WS_URL) as socket:
                for _ in range(25):
                    await socket.send(word)
                got = []
                while len(got) < 25:
                    reply = json.loads(await asyncio.wait_for(socket.recv(), 10))
                    if reply.get("command") != "controloptions":
                        got.append(reply.get("command"))
                return got
        first, second = await asyncio.gather(client("version"), client("getFilters"))
        check(first == ["version"] * 25 and second == ["getfilters"] * 25, "replies go to their sender")
    asyncio.run(run())


def section_binary():
    async def run():
        async with websockets.connect(WS_URL, max_size=None) as socket:
            for payload in [bytes(range(256)) * 4, b"\x00", os.urandom(200000), b'{"command": "close"}']:
                await socket.send(payload)
                echo = await asyncio.wait_for(socket.recv(), 10)
                while isinstance(echo, str):
                    echo = await asyncio.wait_for(socket.recv(), 10)
                check(echo == payload, "binary echo of %d bytes" % len(payload))
    asyncio.run(run())


def section_http():
    status, headers, content = curl("listDevices?pretty=1")
    check(status == 200, "status %d" % status)
    check(headers.get("access-control-allow-origin") == "*", "CORS header: %r" % headers)
    check(headers.get("content-type") == "application/json; charset=UTF-8", "content type: %r" % headers)
    text = content.decode()
    check(text.count("\n") > 3 and '\n    "command": "listdevices"' in text, "indented: %r" % text[:200])
    check(json.loads(text).get("command") == "listdevices", "indented reply parses")
    for path in ["listDevices", "listDevices?pretty", "nosuch?pretty=1"]:
        status, headers, content = curl(path)
        pretty = "pretty" in path
        check(status == 200 and headers.get("access-control-allow-origin") == "*", "%s: status and CORS" % path)
        check((b"\n" in content.strip()) == pretty, "%s: pretty only when asked: %r" % (path, content[:80]))
    # Only the exact key "pretty" asks for indentation.
    check(b"\n" not in curl("listDevices?PRETTY=1")[2].strip(), "PRETTY is not pretty")
    status, headers, content = curl("")
    check(status == 200 and headers.get("content-type", "").startswith("text/html") and b"<cmd " in content,
          "the reference page: %r" % headers)
    status, headers, _ = curl("api.js")
    check(headers.get("content-type") == "application/javascript", "script type: %r" % headers)
    reply = http(urllib.parse.quote("getSettings?key=GeneratorChannelNames&type=virtualdevices", safe="?=&"))
    envelope(reply, "getsettings", keys=["value"])


def section_close():
    envelope(http("close"), "close")


SECTIONS = {"envelopes": section_envelopes, "errors": section_errors, "grab": section_grab,
            "record": section_record, "ordering": section_ordering, "binary": section_binary,
            "http": section_http, "close": section_close}

if __name__ == "__main__":
    try:
        SECTIONS[SECTION]()
    except Exception as error:  # any client-side failure is a failed check, reported as text
        failures.append("%s: %s: %s" % (SECTION, type(error).__name__, error))
    print(json.dumps({"section": SECTION, "failures": failures, "checks": checks, "covered": sorted(covered)}))
