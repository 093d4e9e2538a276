#!/usr/bin/env python3
"""Holds show files against the schema that the program prints: the shows of the repository and of the templates suit it, and a key that
nobody knows, at any place, does not; the program judges alike. Leaves with 77 where there is no validator.

    schema.py STAGEHOST EXAMPLES
"""
import copy
import glob
import json
import os
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    sys.exit(77)

stagehost, examples = (os.path.abspath(path) for path in sys.argv[1:3])


def run(*words):
    return subprocess.run([stagehost, *words], capture_output=True, text=True, timeout=120)


schema = json.loads(run("schema").stdout)
validator = jsonschema.Draft202012Validator(schema)
validator.check_schema(schema)
problems = []
refused = 0


def objects_of(value):
    if isinstance(value, dict):
        yield value
        value = list(value.values())
    for member in value if isinstance(value, list) else []:
        yield from objects_of(member)


def is_open(value, root):
    """Whether an object may have keys of anybody: the schema says so, and so must the program."""
    value["nobodyKnowsThis"] = "x"
    answer = validator.is_valid(root)
    del value["nobodyKnowsThis"]
    return answer


shows = glob.glob(examples + "/*/show.json")
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for kind in ("tcp", "udp", "http", "serial", "logic"):
        run("new", kind, kind)
        shows.append(os.path.join(folder, kind, "show.json"))
    for path in shows:
        with open(path, encoding="utf-8") as file:
            show = json.load(file)
        for error in validator.iter_errors(show):
            problems.append(f"{path}: {list(error.absolute_path)}: {error.message}")
        count = sum(1 for _ in objects_of(show))
        for place in range(count):
            changed = copy.deepcopy(show)
            value = list(objects_of(changed))[place]
            if is_open(value, changed):
                continue
            value["nobodyKnowsThis"] = "x"
            beside = os.path.join(os.path.dirname(path) if path.startswith(folder) else folder, "changed.json")
            with open(beside, "w", encoding="utf-8") as file:
                json.dump(changed, file)
            told = run("variables", beside).stderr
            refused += 1
            if "nobodyKnowsThis" not in told and "expected one of" not in told:
                problems.append(f"{path}: the program takes what the schema refuses: {value}: {told}")
    os.chdir("/")
if len(shows) < 10 or refused < 50:
    problems.append(f"only {len(shows)} shows and {refused} places were looked at")
print("\n".join(problems) or f"{len(shows)} shows suit the schema, and {refused} unknown keys do not")
sys.exit(1 if problems else 0)
