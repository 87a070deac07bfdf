#!/usr/bin/env python3
"""Readers next to a writer at full speed, and killed writers.

usage: soak.py LOAMSHOW LOAMSIM STATE SECONDS KILLS

The octets of every queue in STATE are set to 64 times its packets. This must hold in every row of JSON output, and every
reader must end with 0. Then KILLS writers are killed at random moments: a reader must succeed, or name the record that it
could not read in time."""

import concurrent.futures
import json
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import time

LOAMSHOW, LOAMSIM, STATE = sys.argv[1:4]
SECONDS, KILLS = float(sys.argv[4]), int(sys.argv[5])
SHOWN = ["queues --internal", "ingress --internal", "cpu", "cpu --summary", "drops", "acl", "mtu"]
COMMANDS = [f"{command} --format {form}".split() for command in SHOWN for form in ("text", "json")]
COMMANDS += [["debug"], ["capture"], ["check"]]
STATUS = {"check": 1}  # the sample has findings


def quads(value):
    """The quads of JSON output or of the counters of a state: lists of four counts, or objects with four."""
    if isinstance(value, dict):
        value = [item for key, item in value.items() if key != "ambiguousTcs"]
    if isinstance(value, list):
        if len(value) == 4 and all(isinstance(item, int) for item in value):
            yield value
        for item in value:
            yield from quads(item)


def check(command, output):
    """The number of rows of JSON output, each of which must keep the invariant."""
    assert command != ["capture"] or '"total"' not in output, "a total is not the sum of its queues"
    shown = json.loads(output)
    found = list(quads(shown.get("counters", shown)))
    for quad in found:
        assert [quad[1], quad[3]] == [64 * quad[i] % 2**64 for i in (0, 2)], f"{command}: a torn record: {quad}"
    return len(found)


def passes(path):
    """How many times the writer has updated the first record of the first interface, and every other record."""
    region = pathlib.Path(path).read_bytes()
    at = 0
    for offset in (40, 16, 0, 0):  # of the interface, of its source, of the source's record, of the record's sequence number
        at = struct.unpack_from("=Q", region, at + offset)[0]
    return at // 2


def start(path, *more):
    if os.path.exists(path):
        os.unlink(path)
    writer = subprocess.Popen([LOAMSIM, "--speed", "1e6", "--period", "0", *more, os.path.dirname(path) + "/state", path])
    while not os.path.exists(path):
        assert writer.poll() is None, f"the writer ended with {writer.returncode}"
        time.sleep(0.001)
    return writer


def read(command, path):
    return subprocess.run([LOAMSHOW, "-s", path, *command], capture_output=True, text=True, timeout=60)


def reader(first, path, end):
    """Runs every command at least once. The numbers of outputs and rows."""
    turn = rows = 0
    while time.monotonic() < end or turn < len(COMMANDS):
        command = COMMANDS[(first + turn) % len(COMMANDS)]
        ran = read(command, path)
        assert (ran.returncode, ran.stderr) == (STATUS.get(command[0], 0), ""), ran
        rows += check(command, ran.stdout) if command[-1] in ("json", "capture") else 0
        turn += 1
    return turn, rows


def soak(path, count):
    writer = start(path)
    try:
        begin, before = time.monotonic(), passes(path)
        with concurrent.futures.ThreadPoolExecutor() as pool:
            readers = [pool.submit(reader, first, path, begin + SECONDS) for first in (0, 7)]
        outputs, rows = (sum(numbers) for numbers in zip(*(running.result() for running in readers)))
        updates = (passes(path) - before) * count / (time.monotonic() - begin)
    finally:
        writer.terminate()
    assert writer.wait() == 0 and not os.path.exists(path), "the writer did not end as it should"
    print(f"{updates / 1e6:.2f} million record updates per second beside 2 readers; {outputs} outputs with {rows} rows, all whole")


def kill(path):
    unreadable, longest = 0, 0.0
    for i in range(KILLS):
        writer = start(path, "--seed", str(i))
        time.sleep(random.random() * 0.02)
        writer.kill()
        writer.wait()
        command, begin = random.choice(COMMANDS), time.monotonic()
        ran = read(command, path)
        longest = max(longest, time.monotonic() - begin)
        if ran.returncode == 1 and "cannot be read: the writer stopped in the middle of the record" in ran.stderr:
            unreadable += 1
        else:
            assert ran.returncode == STATUS.get(command[0], 0), f"{command} after a kill: {ran.returncode} {ran.stderr}"
    print(f"{KILLS} writers killed: {KILLS - unreadable} readers succeeded, {unreadable} named a record that they could "
          f"not read; the longest took {longest:.2f} s")


with tempfile.TemporaryDirectory(dir="/dev/shm") as directory:
    switch = json.loads(pathlib.Path(STATE).read_text())
    counters = switch["counters"]
    for quad in quads(counters):
        quad[:] = [count for i in (0, 2) for count in (quad[i] % 2**40, 64 * (quad[i] % 2**40))]
    records = counters["ingress"] + [record for kind in ("egress", "egressTm", "egressLag") for record in counters[kind].values()]
    for record in records:
        record.pop("total", None)
    pathlib.Path(directory + "/state").write_text(json.dumps(switch))
    soak(directory + "/region", len(records))
    kill(directory + "/region")
