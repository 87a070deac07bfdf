"""Holds the sample's answers against their schemas: schemas.py LOAMSHOW STATE DIRECTORY-OF-SCHEMAS

A schema must take the answer, with the first or the last of two equal keys, and refuse it once spoilt."""
import json
import pathlib
import re
import subprocess
import sys

import jsonschema

COMMANDS = ["queues", "queues --internal", "ingress", "ingress --internal", "cpu", "cpu --summary",
            "cpu --per-port", "cpu --summary --per-port", "drops", "acl", "mtu", "registry"]
FIXED = re.compile("(?!all$)[a-z]|TC|DP|0$")  # keys that are no names of the switch
OPTIONAL = {"cpu": "TC.", "drops": "TC6-7|TC.,.", "acl": "mlag.*", "mtu": ".*Pack.*", "registry": "const.*"}
WRONG = {int: ["1", -1, 1.5, 2**64, None], str: [1], dict: ["text"], list: ["text"]}


def first_wins(pairs):
    assert all(sum(key == other for other, _ in pairs) <= 2 for key, _ in pairs), "a key stands three times"
    return dict(reversed(pairs))


def items(value):
    return list(value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else [])


def outline(value):
    return re.sub(r'\d+|"[^"]*"(?=[],}])', "", json.dumps(value))


def thinned(value):
    """The value, with one of those members or elements that differ in names, texts and counts only."""
    kept = {}
    for key, inner in items(value):
        kept.setdefault(key if FIXED.match(str(key)) else outline(inner), (key, thinned(inner)))
    return dict(kept.values()) if isinstance(value, dict) else [v for _, v in kept.values()] if kept else value


def spoilings(parent, key, optional, within=True):
    """Spoils a member or element, then its key, then all within it; yields each time what was done."""
    value = parent[key]
    for wrong in WRONG[type(value)] + ([{**value, "unknown": "text"}] if isinstance(value, dict) else []):
        parent[key] = wrong
        yield f"{key} made {wrong}"
    parent[key] = value
    if isinstance(key, str) and FIXED.match(key):
        parent["copy"] = value
        yield f"{key} copied"
        del parent["copy"], parent[key]
        if not re.fullmatch(optional, key):
            yield f"{key} removed"
    parent[key] = value
    classes = {}  # of traffic classes that are built alike, one is spoilt within
    for at, inner in items(value) if within else []:
        first = classes.setdefault(outline(inner) if str(at).startswith("TC") else at, at)
        yield from (f"{key} / {done}" for done in spoilings(value, at, optional, at == first))


tried = set()
for command in COMMANDS:
    path = pathlib.Path(sys.argv[3]).resolve() / (command.split()[0] + ".json")
    schema = json.loads(path.read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema, resolver=jsonschema.RefResolver(path.as_uri(), schema))
    answer = subprocess.check_output([sys.argv[1], "-s", sys.argv[2], "--json", *command.split()])
    whole = {"": thinned(json.loads(answer))}
    for document in (json.loads(answer, object_pairs_hook=first_wins), json.loads(answer), whole[""]):
        validator.validate(document)
    for done in spoilings(whole, "", OPTIONAL.get(path.stem, "TC6-7")):
        assert (path, done) in tried or not validator.is_valid(whole[""]), f"{command}: taken with {done}"
        tried.add((path, done))
    print(f"{command}: taken, and refused when spoilt; {len(tried)} ways so far")
