#!/usr/bin/env python3
"""Runs what docs/language.md says of the language: each row of its tables with an expression and what it gives. Then holds what it says
of commands, variables and settings against a device.

    language.py STAGEHOST PAGE
"""
import json
import os
import re
import subprocess
import sys
import tempfile

stagehost, page = (os.path.abspath(path) for path in sys.argv[1:3])
with open(page, encoding="utf-8") as file:
    text = file.read()
rows = re.findall(r"^\| `` (.+?) `` \| `` (.+?) `` \|", text, re.M)
problems = []


def run(*words):
    return subprocess.run([stagehost, *words], capture_output=True, text=True, timeout=120)


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    with open("try.js", "w", encoding="utf-8") as file:
        file.write("var rows = " + json.dumps([row[0].replace("\\|", "|") for row in rows]) + """;
({ Try: function () {
    return JSON.stringify(rows.map(function (row) {
        try { return String((0, eval)(row)); } catch (thrown) { return String(thrown); }
    }));
} })
""")
    given = json.loads(run("exec", "try.js", "Try").stdout)
    for (expression, told), result in zip(rows, given):
        if told.replace("\\|", "|") != result:
            problems.append(f"{expression} gives {result}, not {told}")
    with open("device.js", "w", encoding="utf-8") as file:
        file.write("""({
            Info: { Setup: { mode: { Type: "Enum", Items: ["slow", "fast"] } },
                    Variables: { Mood: { Type: "Enum", Items: ["calm", "storm"] } },
                    Commands: { Take: { Params: { mood: { Type: "Enum", Items: ["calm", "storm"] } } } } },
            Setup: { mode: "fast", word: "x", count: 3, part: 0.5 },
            Device: { Mood: "storm" },
            _mStart: function () { var s = this.Setup; print("printed", 2);
                this._kept = [typeof s.mode, s.mode, typeof s.word, typeof s.count, typeof s.part, typeof this.Device.Mood,
                              this.Device.Mood].join(); },
            Take: function (mood) { return [this._kept, typeof mood, mood].join(); }
        })""")
    sent = run("send", "device.js", "script", "Take", "mood=storm")
    if "number,1,string,number,number,number,1,string,storm" not in sent.stdout:
        problems.append(f"settings and parameters arrive otherwise: {sent.stdout}{sent.stderr}")
    printed = run("exec", "--log", "device.js", "Take", "calm")
    if "printed 2" not in printed.stderr:
        problems.append("print is not seen with --log: " + printed.stderr)
    definition = json.loads(run("--json", "definition").stdout)["devices"][0]
    for kind, count in (("commands", 4), ("variables", 5)):
        names = [one["name"] for one in definition[kind]]
        if len(names) != count:
            problems.append(f"there are {len(names)} {kind}")
        for name in names:
            if f"| `{name}` |" not in text:
                problems.append(f"the page does not name {name}")
    os.chdir("/")
if len(rows) < 50:
    problems.append(f"only {len(rows)} rows were tried")
print("\n".join(problems) or f"{len(rows)} rows of the page are so")
sys.exit(1 if problems else 0)
