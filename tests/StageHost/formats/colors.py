#!/usr/bin/env python3
"""Looks for colours in what stagehost prints: at a terminal there are some, with NO_COLOR, TERM=dumb or without a terminal there is none.

    colors.py STAGEHOST EXAMPLES
"""
import os
import pty
import subprocess
import sys
import tempfile

stagehost, examples = (os.path.abspath(path) for path in sys.argv[1:3])
command = [stagehost, "run", examples + "/cuelist/show.json"]
BOLD, GREEN, RED = "\x1b[1m", "\x1b[32m", "\x1b[31m"


def at_terminal(command, **variables):
    """What a terminal gets: standard output and standard error."""
    leader, follower = pty.openpty()
    environment = {name: value for name, value in os.environ.items() if name != "NO_COLOR"}
    environment.update({"TERM": "xterm", "QT_QPA_PLATFORM": "offscreen", **variables})
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=follower, stderr=follower, env=environment)
    os.close(follower)
    seen = b""
    while True:
        try:
            piece = os.read(leader, 4096)
        except OSError:  # how the end shows
            piece = b""
        if not piece:
            break
        seen += piece
    process.wait(60)
    os.close(leader)
    return seen.decode(errors="replace")


problems = []


def expect(is_so, what):
    if not is_so:
        problems.append(what)


seen = at_terminal(command)
expect(BOLD + "1. " in seen, f"no bold heading: {seen!r}")
expect(GREEN + "ok" in seen, f"no green ok: {seen!r}")
expect(RED in at_terminal([stagehost, "run", "there-is-no-such-show.json"]), "a failure is not red")
expect("\x1b[" not in at_terminal(command, NO_COLOR="1"), "NO_COLOR is not kept")
expect(GREEN in at_terminal(command, NO_COLOR=""), "an empty NO_COLOR counts")
expect("\x1b[" not in at_terminal(command, TERM="dumb"), "a dumb terminal gets colours")
plain = subprocess.run(command, capture_output=True, text=True, timeout=60)
expect("\x1b" not in plain.stdout + plain.stderr, "a program gets colours")
with tempfile.TemporaryDirectory() as folder:
    script = os.path.join(folder, "loud.js")
    with open(script, "w", encoding="utf-8") as file:
        file.write("({ f: function () { print('a\\x1b[2Jb'); return 'c\\x1b]0;title\\x07d\\x9be'; } })")
    seen = at_terminal([stagehost, "exec", script, "f"])
    expect("a\\x1b[2Jb" in seen, f"a trace works the terminal: {seen!r}")
    expect("c\\x1b]0;title\\x07d\\x9be" in seen, f"a result works the terminal: {seen!r}")
    plain = subprocess.run([stagehost, "exec", script, "f"], capture_output=True, timeout=60)
    expect(plain.stdout == "c\x1b]0;title\x07d\x9be\n".encode(), "a program gets another result than the script gave")
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
