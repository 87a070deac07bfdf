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
MEMBER = re.compile("(?!all$)[a-z]|TC|DP|[0-9]+$")  # or a place in a list; other keys are names of the switch
OPTIONAL = {"cpu": "TC.", "drops": "TC6-7|TC.,.", "acl": "mlag.*", "mtu": ".*Pack.*", "registry": "const.*"}
WRONG = {int: ["1", -1, 1.5, 2**64, None], str: [1], dict: ["text"], list: ["text"]}


def first_wins(pairs):
    assert all(sum(key == other for other, _ in pairs) <= 2 for key, _ in pairs), "a key stands three times"
    return dict(reversed(pairs))


def spoilings(parent, key, optional):
    """Spoils a member, then all members and the first of the names within it; yields each time what was done."""
    value = parent[key]
    for wrong in WRONG[type(value)] + ([{**value, "unknown": "text"}] if isinstance(value, dict) else []):
        parent[key] = wrong
        yield f"{key} made {wrong}"
    if isinstance(parent, dict) and MEMBER.match(key) and not re.fullmatch(optional, key):
        del parent[key]
        yield f"{key} removed"
    parent[key] = value
    keys = list(value) if isinstance(value, dict) else range(len(value)) if isinstance(value, list) else []
    names = [at for at in keys if not MEMBER.match(str(at))]
    for at in [at for at in keys if at not in names[1:]]:
        yield from (f"{key} / {done}" for done in spoilings(value, at, optional))


tried = set()
for command in COMMANDS:
    path = pathlib.Path(sys.argv[3]).resolve() / (command.split()[0] + ".json")
    schema = json.loads(path.read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema, resolver=jsonschema.RefResolver(path.as_uri(), schema))
    answer = subprocess.check_output([sys.argv[1], "-s", sys.argv[2], "--json", *command.split()])
    whole = {"": json.loads(answer)}
    for document in (json.loads(answer, object_pairs_hook=first_wins), whole[""]):
        validator.validate(document)
    for done in spoilings(whole, "", OPTIONAL.get(path.stem, "TC6-7")):
        assert (path, done) in tried or not validator.is_valid(whole[""]), f"{command}: taken with {done}"
        tried.add((path, done))
    print(f"{command}: taken, and refused when spoilt; {len(tried)} ways so far")
