#!/usr/bin/env python3
"""Readers next to a writer at full speed, and killed writers.

usage: soak.py LOAMSHOW LOAMSIM STATE SECONDS KILLS

The octets of every queue in STATE are set to 64 times its packets. This must hold in every row of every output, and every
reader must end with 0. Then KILLS writers are killed at random moments: a reader must succeed, or name the record that it
could not read in time."""

import json
import os
import random
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time

LOAMSHOW, LOAMSIM, STATE = sys.argv[1:4]
SECONDS, KILLS = float(sys.argv[4]), int(sys.argv[5])
SHOWN = [["queues", "--internal"], ["ingress", "--internal"], ["cpu"], ["cpu", "--summary"], ["drops"], ["acl"], ["mtu"]]
COMMANDS = [command + ["--format", form] for command in SHOWN for form in ("text", "json")]
COMMANDS += [["debug"], ["capture"], ["check"]]
WRITER = ["--speed", "1e6", "--period", "0"]
ROW = re.compile(r" (\d+) +(\d+) +(\d+) +(\d+)$", re.M)


writers, directory = [], None


def fail(problem):
    print("soak:", problem, file=sys.stderr)
    for process in writers:
        process.kill()
    shutil.rmtree(directory, ignore_errors=True)
    os._exit(1)  # from any thread


def even(value):
    """The counters of a state with octets that are 64 times the packets, and without totals."""
    if isinstance(value, dict):
        return {key: item if key == "ambiguousTcs" else even(item) for key, item in value.items() if key != "total"}
    if isinstance(value, list) and len(value) == 4 and all(isinstance(item, int) for item in value):
        packets, drops = value[0] % 2**40, value[2] % 2**40
        return [packets, 64 * packets, drops, 64 * drops]
    return [even(item) for item in value] if isinstance(value, list) else value


def quads(value):
    if isinstance(value, dict):
        if "enqueuedBytes" in value:
            yield [value[key] for key in ("enqueuedPackets", "enqueuedBytes", "droppedPackets", "droppedBytes")]
        for item in (item for key, item in value.items() if key != "ambiguousTcs"):
            yield from quads(item)
    elif isinstance(value, list):
        if len(value) == 4 and all(isinstance(item, int) for item in value):
            yield value
        for item in value:
            yield from quads(item)


def check(command, answer):
    if command[0] == "capture" or "json" in command:
        value = json.loads(answer)
        if command[0] == "capture":
            value = {key: item for key, item in value["counters"].items() if key not in ("egressAcl", "egressMtu")}
            if '"total"' in json.dumps(value):
                fail("a total is not the sum of its queues")
        found = list(quads(value))
    else:
        found = [[int(count) for count in row] for row in ROW.findall(answer)]
    for a, b, c, d in found:
        if b != 64 * a % 2**64 or d != 64 * c % 2**64:
            fail(f"{command}: a torn record: {a} {b} {c} {d}")
    return len(found)


def records(path):
    """The updates of a region's interface records so far: half the sum of their sequence numbers."""
    with open(path, "rb") as file:
        region = file.read()
    at, count = struct.unpack_from("=QQ", region, 40)
    total = 0
    for i in range(count):
        _, _, sources, number, *egress = struct.unpack_from("=8Q", region, at + 64 * i)
        places = [struct.unpack_from("=Q", region, sources + 16 * j)[0] for j in range(number)] + egress
        total += sum(struct.unpack_from("=Q", region, place)[0] // 2 for place in places if place)
    return total


def start(path, *more):
    if os.path.exists(path):
        os.unlink(path)
    writer = subprocess.Popen([LOAMSIM, *WRITER, *more, state, path])
    writers[:] = [writer]
    while not os.path.exists(path):
        if writer.poll() is not None:
            fail(f"the writer ended with {writer.returncode}")
        time.sleep(0.001)
    return writer


def read(command, path):
    return subprocess.run([LOAMSHOW, "-s", path, *command], capture_output=True, text=True, timeout=60)


def reader(number, path, end, answers):
    rows, turn = 0, number
    while time.monotonic() < end or turn < number + len(COMMANDS):
        command = COMMANDS[turn % len(COMMANDS)]
        ran = read(command, path)
        # `check` ends with 1, as the sample has a finding.
        if ran.returncode != (1 if command[0] == "check" else 0) or ran.stderr:
            fail(f"{command} ended with {ran.returncode}: {ran.stderr}")
        rows += check(command, ran.stdout) if command[0] not in ("acl", "mtu", "debug", "check") else 0
        turn += 1
    answers.append((turn - number, rows))


with tempfile.TemporaryDirectory(dir="/dev/shm") as directory:
    state, path = os.path.join(directory, "state.json"), os.path.join(directory, "region")
    with open(STATE, encoding="utf-8") as file:
        switch = json.load(file)
    for kind in ("ingress", "egress", "egressTm", "egressLag"):
        switch["counters"][kind] = even(switch["counters"][kind])
    with open(state, "w", encoding="utf-8") as file:
        json.dump(switch, file)

    writer = start(path)
    begin, before = time.monotonic(), records(path)
    answers = []
    threads = [threading.Thread(target=reader, args=(7 * i, path, begin + SECONDS, answers)) for i in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    passed, updates = time.monotonic() - begin, records(path) - before
    writer.send_signal(signal.SIGINT)
    if writer.wait() != 0 or os.path.exists(path):
        fail("the writer did not end with 0, or left its region")
    print(f"{updates / passed / 1e6:.2f} million record updates per second next to 2 readers; "
          f"{sum(a for a, _ in answers)} outputs with {sum(r for _, r in answers)} rows, all consistent")

    unreadable, longest = 0, 0.0
    for i in range(KILLS):
        writer = start(path, "--seed", str(i))
        time.sleep(random.random() * 0.02)
        writer.kill()
        writer.wait()
        command = random.choice(COMMANDS)
        begin = time.monotonic()
        ran = read(command, path)
        longest = max(longest, time.monotonic() - begin)
        if ran.returncode == 1 and "cannot be read: the writer stopped in the middle of the record" in ran.stderr:
            unreadable += 1
        elif ran.returncode != (1 if command[0] == "check" else 0):
            fail(f"{command} after a kill ended with {ran.returncode}: {ran.stderr}")
    print(f"{KILLS} writers killed: {KILLS - unreadable} readers succeeded, {unreadable} named a record that cannot "
          f"be read; the slowest took {longest:.2f} s")
