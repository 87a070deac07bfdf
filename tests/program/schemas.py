"""Validates the sample's output with the schemas: schemas.py LOAMSHOW STATE DIRECTORY-OF-SCHEMAS

A schema must accept the output, with the first or the last of two equal keys, and reject each of its mutations."""
import json
import pathlib
import re
import subprocess
import sys

import jsonschema

COMMANDS = ["queues", "queues --internal", "ingress", "ingress --internal", "cpu", "cpu --summary",
            "cpu --per-port", "cpu --summary --per-port", "drops", "acl", "mtu", "top", "registry"]
MEMBER = re.compile("(?!all$)[a-z]|TC|DP|[0-9]+$")  # or an index; other keys are names of the switch
OPTIONAL = {"cpu": "TC.", "drops": "TC6-7|TC.,.", "acl": "mlag.*", "mtu": ".*Pack.*", "top": "source|switch|takenAt|seconds", "registry": "const.*"}
WRONG = {int: ["1", -1, 1.5, 2**64, None], str: [1], dict: ["text"], list: ["text"]}


def first_wins(pairs):
    assert all(sum(key == other for other, _ in pairs) <= 2 for key, _ in pairs), "a key occurs three times"
    return dict(reversed(pairs))


def shape(value):
    """The members of a value, and their types."""
    if isinstance(value, dict):
        return str(sorted((key, shape(item)) for key, item in value.items()))
    return str({shape(item): None for item in value}) if isinstance(value, list) else str(type(value))


def reduced(value):
    """The value with only the first name in each object, and the first object of each shape in each list."""
    if isinstance(value, list) and value and isinstance(value[0], dict):
        return list({shape(item): reduced(item) for item in value}.values())
    if not isinstance(value, dict):
        return value
    names = [key for key in value if not MEMBER.match(key)]
    return {key: reduced(item) for key, item in value.items() if key not in names[1:]}


def spoilings(parent, key, optional, within=True):
    """Mutates a member, then all members within it (of traffic classes with one shape only the first), and yields
    a description of each mutation."""
    value = parent[key]
    for wrong in WRONG[type(value)] + ([{**value, "unknown": "text"}] if isinstance(value, dict) else []):
        parent[key] = wrong
        yield f"{key} made {wrong}"
    if isinstance(parent, dict) and MEMBER.match(key) and not re.fullmatch(optional, key):
        del parent[key]
        yield f"{key} removed"
    parent[key] = value
    if not within or not isinstance(value, (dict, list)):
        return
    classes = set()
    for at in list(value) if isinstance(value, dict) else range(len(value)):
        alike = shape(value[at]) if str(at).startswith("TC") else at
        yield from (f"{key} / {done}" for done in spoilings(value, at, optional, alike not in classes))
        classes.add(alike)


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
    small = {"": reduced(whole[""])}
    validator.validate(small[""])
    for done in spoilings(small, "", OPTIONAL.get(path.stem, "TC6-7")):
        assert (path, done) in tried or not validator.is_valid(small[""]), f"{command}: accepted with {done}"
        tried.add((path, done))
    print(f"{command}: output accepted, mutations rejected; {len(tried)} so far")
