"""Compares the schema and the page of the state file with the program: stateschema.py LOAMSHOW SAMPLES DOCS

Program and schema must agree on the sample and on every mutation of it; the program's message must name the
member. What a schema cannot express is listed in REFUSED_BY_THE_PROGRAM_ONLY."""
import copy
import json
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

LOAMSHOW, SAMPLES, DOCS = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
SCHEMA = json.loads((DOCS / "schema/state.json").read_text())
PAGE = (DOCS / "state-file.md").read_text()
# Members that the sample leaves at their defaults.
ADDED = {
    "switch": {"name": "leaf7", "takenAt": "2026-11-23T10:53:31Z"},
    "perInputPortCoppVoqs": True,
    "counters/egress/Ethernet1~11/total": [1, 2, 3, 4],
    "debug/faps/Fap0/directory/blocks/egq/DiscardCnt/displayType": 0,
    "debug/faps/Fap0/directory/blocks/cgm/VoqOccupancy/fields/low/isDropCounter": True,
}
TIMES = {"2024-02-29T00:00:00Z": True, "2000-02-29T00:00:00.123456Z": True, "2023-02-29T00:00:00Z": False,
         "1900-02-29T00:00:00Z": False, "2026-04-31T00:00:00Z": False, "2026-11-23T24:00:00Z": False,
         "2026-11-23T10:53:60Z": False, "2026-11-23T10:53:31": False, "2026-11-23T10:53:31.1234567Z": False,
         "2026-11-23T10:53:31.Z": False, "2026-11-23t10:53:31Z": False, "2026-11-23T10:53:31z": False,
         "2026-11-23 10:53:31Z": False, "2026-11-23T10:53:31+00:00": False}
REFUSED_BY_THE_PROGRAM_ONLY = [
    '{"status": {"subIntfNumVoqs": 1.0}}', '{"status": {"subIntfNumVoqs": 1e0}}',
    '{"debug": {"switchTimeOffset": 1e400}}', '{"debug": {}, "debug": {}}', '{"status": {"olpPort": {"1": 2, "1": 2}}}',
    '{"fabricMcastVoq": {"min": 1, "max": 0}}', '{"fabricMcastVoq": {"min": 0, "max": 8}}',
    '{"counters": {"ingress": [{"intfId": "a"}, {"intfId": "a", "fapId": 0}]}}',
    '{"status": {"portMapToIntfId": [{"intfId": "a"}, {"intfId": "b"}]}}',
    '{"status": {"recircPort": [{"systemPhyPortId": 2}, {"systemPhyPortId": 3}]}}']
COUNTS_IN_THE_ANSWERS = {"queues": [1000, 993], "ingress": [1000, 64000], "cpu": [50, 4250], "drops": [7, 2],
                         "acl": [12], "mtu": [991, 3, 994]}

validator = jsonschema.Draft202012Validator(SCHEMA)
scratch = tempfile.NamedTemporaryFile("w+", suffix=".json")
runs = 0


def loamshow(text, *arguments):
    """Runs the program on a state."""
    global runs
    runs += 1
    scratch.seek(0)
    scratch.truncate()
    scratch.write(text)
    scratch.flush()
    return subprocess.run([LOAMSHOW, "-s", scratch.name, *arguments], capture_output=True, text=True)


def refusal(text):
    """The program's error message for a state; None if it accepts the state."""
    ran = loamshow(text, "check")
    assert ran.returncode in (0, 1, 2) and (ran.returncode == 2) == (ran.stderr != ""), (text, ran)
    return ran.stderr.removeprefix(f"loamshow: {scratch.name}: ") or None


def resolved(schema):
    """The schema without references, and the name of its place if several places share one."""
    shared = None
    while "$ref" in schema:
        name = schema["$ref"].rpartition("/")[2]
        shared = name if name in ("quad", "pair") else shared
        schema = {**SCHEMA["$defs"][name], **{key: value for key, value in schema.items() if key != "$ref"}}
    return (resolved(schema["anyOf"][0])[0] | {"nullable": True} if "anyOf" in schema else schema), shared


def children(schema, value, place):
    """The direct members of a value: key, schema, and place in the schema, which entries of a collection share."""
    if isinstance(value, dict):
        for key in value:
            known = schema.get("properties", {}).get(key)
            yield key, known or schema["additionalProperties"], (*place, key if known else "*")
    elif isinstance(value, list):
        for i in range(len(value)):
            yield i, schema["items"], (*place, "*")


def places(schema, value, place=("",), path=()):
    """A value and all values within it: path, schema and place."""
    schema, shared = resolved(schema)
    yield path, schema, place
    for key, part, inner in children(schema, value, (shared,) if shared else place):
        yield from places(part, value[key], inner, (*path, key))


def reduced(schema, value, place, seen):
    """The value without the entries of collections in which every place was seen before."""
    schema, shared = resolved(schema)
    seen.add(place)
    place = (shared,) if shared else place
    if "minItems" in schema:
        seen.add((*place, "*"))
    if not isinstance(value, (dict, list)) or "minItems" in schema:
        return value
    kept = {}
    for key, part, inner in children(schema, value, place):
        if any(found not in seen for _, _, found in places(part, value[key], inner)):
            kept[key] = reduced(part, value[key], inner, seen)
    return kept if isinstance(value, dict) else list(kept.values())


def at(state, path):
    for key in path:
        state = state[key]
    return state


def changed(state, path, value=None, remove=False):
    if not path:
        return value
    state = copy.deepcopy(state)
    parent = at(state, path[:-1])
    if remove:
        parent.pop(path[-1])
    else:
        parent[path[-1]] = value
    return state


def values(schema, value, place):
    """Replacements for a value: mostly invalid ones, and the limits of valid ones."""
    kinds = schema["type"] if isinstance(schema["type"], list) else [schema["type"]]
    yield from (None, "text") if "null" in kinds or "nullable" in schema else (None,)
    if "integer" in kinds:
        yield from (schema["minimum"] - 1, schema["maximum"] + 1, 0.5)
    if "string" in kinds:
        yield from ("", "a\0b")
    if "object" in kinds:
        yield {**value, "unknown member": 1}
        if isinstance(schema.get("additionalProperties"), dict):
            (key, item), *others = value.items()
            for other in ("01", "1", "2047", "32768", "65536") if key.isdigit() else ("a\0b", ""):
                if other not in value:
                    yield {other: item, **dict(others)}
    if place[-1] == "queues":
        yield from ((value * 81)[:size] for size in (8, 9, 16, 17, 80, 81))
    elif "array" in kinds and not isinstance(value[0], dict):
        yield from (value[:-1], value * 2)


def mutations(state):
    """A changed member, and the state with it; each place of the schema once."""
    seen = set()
    for path, schema, place in places(SCHEMA, state):
        if place not in seen:
            seen.add(place)
            yield from ((path, changed(state, path, value)) for value in values(schema, at(state, path), place))
            if path:
                yield path[:-1], changed(state, path, remove=True)


def pointer(path):
    return "".join("/" + str(key).replace("~", "~0").replace("/", "~1") for key in path)


def agree(path, state):
    text = json.dumps(state)
    refused = refusal(text)
    assert (refused is None) == validator.is_valid(state), f"{pointer(path)}: program: {refused}\n{text:.2000}"
    assert refused is None or refused.startswith(pointer(path)), f"{pointer(path)} expected: {refused}"
    return refused is None


jsonschema.Draft202012Validator.check_schema(SCHEMA)
sample = json.loads((SAMPLES / "sample-switch.json").read_text())
assert agree((), sample)
base = sample
for path, value in ADDED.items():
    base = changed(base, tuple(key.replace("~1", "/") for key in path.split("/")), value)
base = reduced(SCHEMA, base, ("",), set())
assert agree((), base)
accepted = [agree(path, state) for path, state in mutations(base)]
for lowest in (True, False):
    state = base
    for path, schema, _ in places(SCHEMA, base):
        if "minimum" in schema:
            state = changed(state, path, schema["minimum" if lowest else "maximum"])
    state["fabricMcastVoq"] = {"min": state["fabricMcastVoq"]["max"], "max": state["fabricMcastVoq"]["max"]}
    assert agree((), state), "every number at the end of its range"
for time, taken in TIMES.items():
    assert agree(("switch", "takenAt"), {"switch": {"takenAt": time}}) == taken, time
for text in REFUSED_BY_THE_PROGRAM_ONLY:
    assert validator.is_valid(json.loads(text)) and refusal(text), text
print(f"{runs} runs: {sum(accepted)} mutations accepted, {len(accepted) - sum(accepted)} refused, by both")

known = {path[-1] for path, _, _ in places(SCHEMA, base) if path}
members = {key for part in [SCHEMA, *SCHEMA["$defs"].values()] for key in re.findall(
    r'"(\w+)": \{', json.dumps(part.get("properties", {})))} - {
        "properties", "items", "additionalProperties", "dependentRequired"}
words = set(re.findall(r"\w+", " ".join(re.findall(r"`([^`]*)`", PAGE))))
assert members <= known, f"not tried: {members - known}"
assert members <= words, f"not on the page: {members - words}"

minimal = re.search(r"```json\n(.*?)```", PAGE, re.S).group(1)
validator.validate(json.loads(minimal))
ran = loamshow(minimal, "check")
assert (ran.returncode, ran.stdout, ran.stderr) == (0, "", ""), ran
for command, counts in COUNTS_IN_THE_ANSWERS.items():
    answer = loamshow(minimal, "--json", command).stdout
    missing = [count for count in counts if not re.search(rf":{count}\b", answer)]
    assert not missing, f"{command}: {missing} missing from {answer}"

planted = re.search(r"```\n(.*?)```", (SAMPLES / "README.md").read_text(), re.S).group(1)
ran = loamshow(json.dumps(sample), "check")
assert (ran.returncode, ran.stdout, ran.stderr) == (1, planted, ""), ran
answer = json.loads(loamshow(json.dumps(sample), "check", "--json").stdout)
assert "".join(f"{finding['member']}: {finding['problem']}\n" for finding in answer["findings"]) == planted, answer
answers = jsonschema.Draft202012Validator(json.loads((DOCS / "schema/check.json").read_text()))
answers.validate(answer)
for wrong in ({}, {**answer, "unknown": 1}, {"findings": [{"member": "/a"}]}, {"findings": [{"problem": "b"}]},
              {"findings": [{"member": "a", "problem": "b"}]}, {"findings": [{**answer["findings"][0], "unknown": 1}]}):
    assert not answers.is_valid(wrong), wrong
