"""Compares the schemas and the page of the state file with the program: schemas.py LOAMSHOW SAMPLES DOCS

The schema of the state file and the program must agree on the sample and on every mutation of it; the program's message must name the
member. What the schema cannot express is listed in REFUSED_BY_THE_PROGRAM_ONLY. The schema of an answer must accept it, with the first
or the last of two equal keys, and reject each of its mutations."""
import copy
import json
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

LOAMSHOW, SAMPLES, DOCS = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]).resolve()
STATE = json.loads((DOCS / "schema/state.json").read_text())
SAMPLE = (SAMPLES / "sample-switch.json").read_text()
TIMES = ["2024-02-29T00:00:00Z", "2000-02-29T00:00:00.123456Z"]
NO_TIMES = [
    "2023-02-29T00:00:00Z", "1900-02-29T00:00:00Z", "2026-04-31T00:00:00Z", "2026-11-23T24:00:00Z", "2026-11-23T10:53:60Z",
    "2026-11-23T10:53:31", "2026-11-23T10:53:31.1234567Z", "2026-11-23T10:53:31.Z", "2026-11-23 10:53:31z"]
REFUSED_BY_THE_PROGRAM_ONLY = [
    '{"status": {"subIntfNumVoqs": 1.0}}', '{"status": {"subIntfNumVoqs": 1e0}}',
    '{"debug": {"switchTimeOffset": 1e400}}', '{"debug": {}, "debug": {}}', '{"status": {"olpPort": {"1": 2, "1": 2}}}',
    '{"fabricMcastVoq": {"min": 1, "max": 0}}', '{"fabricMcastVoq": {"min": 0, "max": 8}}',
    '{"counters": {"ingress": [{"intfId": "a"}, {"intfId": "a", "fapId": 0}]}}',
    '{"status": {"portMapToIntfId": [{"intfId": "a"}, {"intfId": "b"}]}}',
    '{"status": {"recircPort": [{"systemPhyPortId": 2}, {"systemPhyPortId": 3}]}}']
COUNTS_OF_THE_MINIMAL_FILE = {"queues": [1000, 993], "ingress": [1000, 64000], "cpu": [50, 4250], "drops": [7, 2],
                              "acl": [12], "mtu": [991, 3, 994]}
COMMANDS = ["queues", "queues --internal", "ingress", "ingress --internal", "cpu", "cpu --summary", "cpu --per-port",
            "cpu --summary --per-port", "drops", "acl", "mtu", "top", "registry", "check"]
# Members of answers, or indices; other keys are names of the switch.
MEMBER = "(?!all$)[a-z]|TC|DP|[0-9]+$"
OPTIONAL = {"cpu": "TC.", "drops": "TC6-7|TC.,.", "acl": "mlag.*", "mtu": ".*Pack.*", "top": "source|switch|takenAt|seconds",
            "registry": "const.*"}
WRONG = {int: ["1", -1, 1.5, 2**64, None], str: [1], dict: ["text"], list: ["text"]}

scratch = tempfile.NamedTemporaryFile("w+", suffix=".json")


def loamshow(text, *arguments):
    """Runs the program on a state."""
    scratch.seek(0)
    scratch.truncate()
    scratch.write(text)
    scratch.flush()
    return subprocess.run([LOAMSHOW, "-s", scratch.name, *arguments], capture_output=True, text=True)


def walk(value, path=()):
    """The paths of a value and of all values within it, and these values."""
    yield path, value
    for key, item in value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ():
        yield from walk(item, (*path, key))


def changed(value, path, *replacement):
    """The value with a replacement at a path, or without what is at that path."""
    if not path:
        return replacement[0]
    value = copy.copy(value)
    if replacement or path[1:]:
        value[path[0]] = changed(value[path[0]], path[1:], *replacement)
    else:
        value.pop(path[0])
    return value


def reduced(value, member):
    """The value with only the first key in each object that is no member, and one item of each list per set of members."""
    if isinstance(value, list) and value and isinstance(value[0], (dict, list)):
        return list({str(isinstance(item, dict) and [*item]): reduced(item, member) for item in value}.values())
    if not isinstance(value, dict):
        return value
    names = [key for key in value if not re.match(member, key)]
    return {key: reduced(item, member) for key, item in value.items() if key not in names[1:]}


def part(path, schema=STATE):
    """The schema of the member of the state at a path."""
    schema = schema.get("anyOf", [schema])[0]
    while "$ref" in schema:
        shared = STATE["$defs"][schema["$ref"].rpartition("/")[2]]
        schema = {**shared, **{key: value for key, value in schema.items() if key != "$ref"}}
    if not path:
        return schema
    known = schema.get("items") or schema.get("properties", {}).get(path[0])
    return part(path[1:], known or schema["additionalProperties"])


def mutations(state):
    """The path of a changed member, and the state with it: mostly invalid ones, and the limits of valid ones."""
    for path, value in walk(state):
        schema = part(path)
        values = [None, "text"]
        if isinstance(value, str):
            values += ["", "a\0b"]
        elif isinstance(value, dict):
            values.append({**value, "unknown member": 1})
            if isinstance(schema.get("additionalProperties"), dict):
                (key, item), *others = value.items()
                keys = ("01", "1", "2047", "32768", "65536") if key.isdigit() else ("a\0b", "")
                values += [{other: item, **dict(others)} for other in keys if other != key]
        elif path[-1:] == ("queues",):
            values += [(value * 81)[:size] for size in (8, 9, 16, 17, 80, 81)]
        elif isinstance(value, list) and not isinstance(value[0], dict):
            values += [value[:-1], value * 2]
        elif "minimum" in schema:
            values += [schema["minimum"] - 1, schema["maximum"] + 1, 0.5]
        yield from ((path, changed(state, path, value)) for value in values)
        if path:
            yield path[:-1], changed(state, path)


def agree(path, state):
    """Whether program and schema accept a state. The message of a refusal must name the member at the path."""
    text = json.dumps(state)
    ran = loamshow(text, "check")
    member = "".join("/" + str(key).replace("~", "~0").replace("/", "~1") for key in path)
    refused = ran.returncode == 2 and ran.stderr.startswith(f"loamshow: {scratch.name}: {member}")
    accepted = ran.returncode in (0, 1) and ran.stderr == ""
    assert (accepted if validator.is_valid(state) else refused), f"{member}: {ran}\n{text:.2000}"
    return accepted


def leaves(value):
    return {(path, item) for path, item in walk(value) if not isinstance(item, (dict, list))}


def first_wins(pairs):
    assert all(sum(key == other for other, _ in pairs) <= 2 for key, _ in pairs), "a key occurs three times"
    return dict(reversed(pairs))


def spoilings(answer, optional):
    """Mutations of an answer, and what they have changed."""
    for path, value in walk(answer):
        for wrong in WRONG[type(value)] + ([{**value, "unknown": "text"}] if isinstance(value, dict) else []):
            yield changed(answer, path, wrong), f"{path} made {wrong}"
        if path and isinstance(path[-1], str) and re.match(MEMBER, path[-1]) and not re.fullmatch(optional, path[-1]):
            yield changed(answer, path), f"{path} removed"


jsonschema.Draft202012Validator.check_schema(STATE)
validator = jsonschema.Draft202012Validator(STATE)
members = {path[-1] for path, _ in walk(STATE) if path[-2:-1] == ("properties",)}
base = reduced(json.loads(SAMPLE), "|".join(members) + "$")
# Members that these leave at their defaults.
base.update(perInputPortCoppVoqs=True, skeinMountMode=True, interfaces=["Ethernet1/1"],
            tmMapping={"portTmMap": [64]}, fabricMcastVoq={"min": 1, "max": 2})
counters = base["counters"]
for record in [*counters["ingress"], *(item for kind in ("egress", "egressTm", "egressLag") for item in counters[kind].values())]:
    record["total"] = [1, 2, 3, 4]
field = {"displayName": "Low", "offset": 7, "order": 1, "fetchType": 2, "isDropCounter": True}
base["debug"]["faps"]["Fap0"]["directory"]["blocks"]["cgm"]["RejectCnt"].update(
    offset=1, firstInstance=1, fetchType=1, displayType=1, fields={"low": field})
for path, item in walk(base):
    base = changed(base, path, 1) if type(item) is int and item == 0 else base
assert agree((), json.loads(SAMPLE)) and agree((), base)
assert members <= {key for path, _ in walk(base) for key in path}, "a member is not tried"
accepted = [agree(path, state) for path, state in mutations(base)]
for limit in ("minimum", "maximum"):
    state = base
    for path, _ in walk(base):
        state = changed(state, path, part(path)[limit]) if limit in part(path) else state
    state["fabricMcastVoq"]["min"] = state["fabricMcastVoq"]["max"]
    assert agree((), state), f"every number at its {limit}"
for time in TIMES + NO_TIMES:
    assert agree(("switch", "takenAt"), {"switch": {"takenAt": time}}) == (time in TIMES), time
for text in REFUSED_BY_THE_PROGRAM_ONLY:
    assert validator.is_valid(json.loads(text)) and loamshow(text, "check").returncode == 2, text
print(f"{len(accepted)} mutations of the state, {sum(accepted)} of them accepted")

captured = leaves(json.loads(loamshow(json.dumps(base), "capture").stdout))
assert captured == leaves(base), f"capture changes {captured ^ leaves(base)}"

page = (DOCS / "state-file.md").read_text()
missing = members - set(re.findall(r"\w+", " ".join(re.findall("`([^`]*)`", page))))
assert not missing, f"not on the page: {missing}"
minimal = re.search("```json\n(.*?)```", page, re.S).group(1)
for text, expected in [(minimal, ""), (SAMPLE, re.search("```\n(.*?)```", (SAMPLES / "README.md").read_text(), re.S).group(1))]:
    ran = loamshow(text, "check")
    assert (ran.returncode, ran.stdout, ran.stderr) == (1 if expected else 0, expected, ""), ran
for command, counts in COUNTS_OF_THE_MINIMAL_FILE.items():
    answer = loamshow(minimal, "--json", command).stdout
    assert all(re.search(rf":{count}\b", answer) for count in counts), f"{command}: {answer}"

tried = set()
for command in COMMANDS:
    path = DOCS / "schema" / (command.split()[0] + ".json")
    schema = json.loads(path.read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema, resolver=jsonschema.RefResolver(path.as_uri(), schema))
    answer = loamshow(SAMPLE, "--json", *command.split()).stdout
    small = reduced(json.loads(answer), MEMBER)
    for document in (json.loads(answer), json.loads(answer, object_pairs_hook=first_wins), small):
        validator.validate(document)
    for spoilt, done in spoilings(small, OPTIONAL.get(path.stem, "TC6-7")):
        assert (path, done) in tried or not validator.is_valid(spoilt), f"{command}: accepted with {done}"
        tried.add((path, done))
print(f"{len(tried)} mutations of answers")
