#!/usr/bin/env python3
"""Holds what the program prints with --json against docs/json.md, in both directions.

    outputs.py STAGEHOST EXAMPLES PAGE
"""
import json
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile

stagehost, examples, page = (os.path.abspath(path) for path in sys.argv[1:4])
problems = []


def run(*words, given=""):
    done = subprocess.run([stagehost, "--json", *words], input=given, capture_output=True, text=True, timeout=120)
    return done.stdout


def paths(value, here, told):
    """The paths of all that a value holds, where the page does not leave them open with a star."""
    if here + ".*" in told or here.endswith("[].*"):
        return {here + ".*"}
    if isinstance(value, dict) and value:
        inner = (paths(member, f"{here}.{key}" if here else key, told) for key, member in value.items())
    elif isinstance(value, list) and value:
        inner = (paths(member, here + "[]", told) for member in value)
    else:
        return {here}
    return set().union(*inner)


def replayed():
    """The lines of a replay that is asked what it knows, what it does not know, and to do what it cannot do."""
    with open("some.traffic", "w", encoding="utf-8") as file:
        file.write('{"traffic":1,"kind":"tcp","device":"127.0.0.1:1"}\n{"connection":1,"from":"program","text":"ask\\r"}\n'
                   '{"connection":1,"from":"device","text":"answer\\r"}\n')
    program = subprocess.Popen([stagehost, "--json", "replay", "some.traffic"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    lines = [json.loads(program.stdout.readline())]
    with socket.create_connection(("127.0.0.1", lines[0]["tcp"])) as caller:
        caller.sendall(b"ask\r")
        caller.recv(100)
        caller.sendall(b"axe\r")
        program.stdin.write('{"do":"dance"}\n{"do":"obey"}\n')
        program.stdin.flush()
        while not all(any(key in line for line in lines) for key in ("unknown", "refused", "done")):
            lines.append(json.loads(program.stdout.readline()))
    program.communicate(timeout=120)
    return lines


def hold(section, values):
    told = set(re.findall(r"^\| `([^`]+)` \|", sections[section], re.M))
    seen = set().union(*(paths(value, "", told) for value in values))
    for path in sorted(seen):
        # An empty list or object has nothing in it yet.
        if path not in told and not any(other.startswith((path + "[]", path + ".")) for other in told):
            problems.append(f"{section}: {path} is printed and not told")
    for path in sorted(told - seen):
        problems.append(f"{section}: {path} is told and never printed")


with open(page, encoding="utf-8") as file:
    parts = re.split(r"^### (.*)\n", file.read(), flags=re.M)
sections = dict(zip(parts[1::2], parts[2::2]))
folder = tempfile.mkdtemp()
os.chdir(folder)
try:
    shutil.copytree(examples, "examples")
    dimmer, show = "examples/driver/dimmer.js", "examples/driver/show.json"
    with open("bad.js", "w", encoding="utf-8") as file:
        file.write("({ f: }")
    with open("noted.js", "w", encoding="utf-8") as file:
        file.write("({ Info: { Setup: { unread: { Type: 'Enum', Items: ['a'] } } }, Setup: { unread: 'a' }, f: function () { QCalverin.Nope(); } })")
    with open("thrown.js", "w", encoding="utf-8") as file:
        file.write("({ f: function () { setTimeout(1); } })")
    with open("top.js", "w", encoding="utf-8") as file:
        file.write("setTimeout(1);")
    with open("thrown.json", "w", encoding="utf-8") as file:
        json.dump({"devices": [{"name": "d", "driver": "thrown.js"}], "steps": [{"device": "d", "command": "f"}]}, file)
    with open("talker.js", "w", encoding="utf-8") as file:
        file.write("({ Setup: { port: 1 }, ask: function () { var b = new Buffer('ask');\n  QCalverin.CreateSocket('udp4').send(b, 0, b.length, Number(this.Setup.port), '127.0.0.1');\n"
                   "  QCalverin.SetTimeout(function () { nothing(); }, 100); } })")
    with open("fake.js", "w", encoding="utf-8") as file:
        file.write("var d = Counterpart.udp(); d.onDatagram = function (sender) { sender.say('no'); };")
    talk = {"peers": [{"name": "fake", "script": "fake.js"}],
            "devices": [{"name": "d", "driver": "talker.js", "settings": {"port": {"peer": "fake"}}}]}
    ask, heard = {"device": "d", "command": "ask"}, {"wait": {"peer": "fake", "received": "ask", "within": 20000}}
    for name, steps in (("unheard.json", [ask, heard, {"wait": {"peer": "fake", "received": "more", "within": 300}}]),
                        ("late.json", [ask, heard, {"pause": 1000}])):
        with open(name, "w", encoding="utf-8") as file:
            json.dump({**talk, "steps": steps}, file)
    hold("Failures", [json.loads(run("run", "none.json")), json.loads(run("exec", "thrown.js", "f"))])
    hold("`exec`, `send`", [json.loads(run("exec", dimmer, "Blackout")), json.loads(run("send", dimmer, "script", "Blackout")),
                            json.loads(run("send", "thrown.js", "script", "f"))])
    hold("`run`", [json.loads(run("run", show)), json.loads(run("run", "thrown.json")), json.loads(run("run", "unheard.json")),
                    json.loads(run("run", "late.json"))])
    hold("`test`", [json.loads(run("test", "examples/cuelist", "thrown.json", "unheard.json", "noted.js"))])
    hold("`check`", [json.loads(run("check", script)) for script in (dimmer, "bad.js", "noted.js", "top.js")])
    hold("`definition`", [json.loads(run("definition", dimmer))])
    hold("`record`, `replay`", replayed())
    hold("`variables`", [json.loads(run("variables", dimmer))])
    hold("`new`", [json.loads(run("new", "udp", "demo"))])
    hold("`setup`", [json.loads(run("setup", show))])
    hold("`store`", [json.loads(run("store", show, "X", "front", "Blackout"))])
    with open(dimmer, encoding="utf-8") as file:
        changed = file.read().replace("FadeTo: function (level, seconds)", "FadeTo: function (level, seconds, curve)")
    with open(dimmer, "w", encoding="utf-8") as file:
        file.write(changed)
    run("setup", show)
    hold("`update`", [json.loads(run("update", show))])
    lines = run("watch", show, given="set front.Level 4\nget nothing\n").splitlines()
    lines += run("watch", "thrown.js", given="send script f\n").splitlines()
    hold("`watch`", [json.loads(line) for line in lines])
finally:
    shutil.rmtree(folder)
print("\n".join(problems) or f"{len(sections)} outputs are as the page tells")
sys.exit(1 if problems else 0)
